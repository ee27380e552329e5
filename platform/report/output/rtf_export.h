#pragma once

#include "platform/report/output/export_filter.h"

namespace report {

/// The pages as tables of a word processor.
class RtfExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QString caption() const override;
    QString ending() const override { return QStringLiteral(".rtf"); }

private:
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;
};

} // namespace report
