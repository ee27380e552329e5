#pragma once

#include "platform/report/output/export_filter.h"

namespace report {

/// Pages as they are printed.
class PdfExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QString caption() const override;
    QString ending() const override { return QStringLiteral(".pdf"); }

private:
    Form form() const override { return Form::Pages; }
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;
};

/// One picture a page: "name.jpg", or "name-1.jpg" and so on when there are more; the pictures
/// come to stand in their places when the last one is whole.
class JpegExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    int resolution() const { return m_resolution; } ///< dots per inch
    void setResolution(int resolution) { m_resolution = resolution; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".jpg"); }

private:
    Form form() const override { return Form::Pages; }
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;

    int m_resolution = 150;
};

} // namespace report
