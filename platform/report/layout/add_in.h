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

/// Teaches reports to draw a kind of object that not every program needs.
class ReportAddIn : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual ObjectKind kind() const = 0;
    /// Throws Exception when the task cannot be drawn.
    virtual void draw(const AddInTask &task, Drawing &drawing) const = 0;
};

} // namespace report
