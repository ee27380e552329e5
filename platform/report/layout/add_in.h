#pragma once

#include "platform/report/layout/page.h"

#include <QObject>

namespace report {

/// What an add-in is to draw.
struct AddInTask {
    const Object &object;
    QRect box; ///< on the band
    QString text {}; ///< of a bar code or a chart's title
    QList<std::pair<QString, double>> points {}; ///< of a chart: labels in the order of their first appearance
};

} // namespace report

/// Teaches reports to draw a kind of object that not every program needs.
class ReportAddIn : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual report::ObjectKind kind() const = 0;
    /// Throws Exception when the task cannot be drawn.
    virtual void draw(const report::AddInTask &task, report::Drawing &drawing) const = 0;
};

/// Bar codes: Code 128, Code 39, EAN-13 and QR.
class BarCodeObject : public ReportAddIn {
    Q_OBJECT

public:
    using ReportAddIn::ReportAddIn;
    report::ObjectKind kind() const override { return report::ObjectKind::BarCode; }
    void draw(const report::AddInTask &task, report::Drawing &drawing) const override;
};

/// Charts: bars, lines and pie.
class ChartObject : public ReportAddIn {
    Q_OBJECT

public:
    using ReportAddIn::ReportAddIn;
    report::ObjectKind kind() const override { return report::ObjectKind::Chart; }
    void draw(const report::AddInTask &task, report::Drawing &drawing) const override;
};
