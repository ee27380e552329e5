#pragma once

#include "platform/report/output/export_filter.h"

namespace report {

/// What a spreadsheet takes over from the look of the report.
enum class CellLook { Alignment = 1, FillColor = 2, FontColor = 4, FontName = 8, FontSize = 16, FontStyle = 32 };
Q_DECLARE_FLAGS(CellLooks, CellLook)

/// The report's data as an .xlsx workbook: numbers as numbers, everything else as text that stays as it is. A sheet that is full is
/// followed by another.
class SpreadsheetExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    CellLooks looks() const { return m_looks; } ///< none unless set
    void setLooks(CellLooks looks) { m_looks = looks; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".xlsx"); }

private:
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;

    CellLooks m_looks;
};

} // namespace report

// Out here they do not hide those of Qt from the namespace.
Q_DECLARE_OPERATORS_FOR_FLAGS(report::CellLooks)
