#pragma once

#include "platform/report/output/export_filter.h"

/// Plain text in lines, laid out with blanks as on the pages; a form feed begins each further page. UTF-8 with a byte-order mark, CRLF.
class TextExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    /// How many characters and lines stand where one would.
    qreal scaleX() const { return m_scaleX; }
    void setScaleX(qreal scale) { m_scaleX = scale; }
    qreal scaleY() const { return m_scaleY; }
    void setScaleY(qreal scale) { m_scaleY = scale; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".txt"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;

private:
    qreal m_scaleX = 1.0;
    qreal m_scaleY = 1.0;
};

/// The report's data, one row a line, in quotes where needed. UTF-8 with a byte-order mark, CRLF. A text that a spreadsheet would run
/// as a formula gets a leading tab.
class CsvExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QChar delimiter() const { return m_delimiter; }
    void setDelimiter(QChar delimiter) { m_delimiter = delimiter; }
    /// How finely columns and rows are told apart: at twice the scale, texts half as near to each other are two.
    qreal scaleX() const { return m_scaleX; }
    void setScaleX(qreal scale) { m_scaleX = scale; }
    qreal scaleY() const { return m_scaleY; }
    void setScaleY(qreal scale) { m_scaleY = scale; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".csv"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;

private:
    QChar m_delimiter = u';';
    qreal m_scaleX = 1.0;
    qreal m_scaleY = 1.0;
};

/// What a spreadsheet takes over from the look of the report.
enum class CellLook { Alignment = 1, FillColor = 2, FontColor = 4, FontName = 8, FontSize = 16, FontStyle = 32 };
Q_DECLARE_FLAGS(CellLooks, CellLook)
Q_DECLARE_OPERATORS_FOR_FLAGS(CellLooks)

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
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;

private:
    CellLooks m_looks;
};

/// The pages as tables of a word processor.
class RtfExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QString caption() const override;
    QString ending() const override { return QStringLiteral(".rtf"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;
};

/// The pages as tables of one HTML file.
class HtmlTableExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    QString caption() const override;
    QString ending() const override { return QStringLiteral(".html"); }
    void exportReport(PreparedReport &report, const QString &fileName, const Progress &progress = {}) override;
};
