#pragma once

#include "platform/report/output/export_filter.h"

namespace report {

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

private:
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;

    qreal m_scaleX = 1.0;
    qreal m_scaleY = 1.0;
};

/// The report's data, one row a line, in quotes where needed. UTF-8 with a byte-order mark, CRLF. A text that a spreadsheet would run
/// as a formula gets a leading tab.
class CsvExport : public ExportFilter {
    Q_OBJECT

public:
    using ExportFilter::ExportFilter;
    char delimiter() const { return m_delimiter; }
    void setDelimiter(char delimiter) { m_delimiter = delimiter; }
    /// How finely columns and rows are told apart: at twice the scale, texts half as near to each other are two.
    qreal scaleX() const { return m_scaleX; }
    void setScaleX(qreal scale) { m_scaleX = scale; }
    qreal scaleY() const { return m_scaleY; }
    void setScaleY(qreal scale) { m_scaleY = scale; }

    QString caption() const override;
    QString ending() const override { return QStringLiteral(".csv"); }

private:
    void write(PreparedReport &report, const QString &fileName, const Progress &progress) override;

    char m_delimiter = ';';
    qreal m_scaleX = 1.0;
    qreal m_scaleY = 1.0;
};

} // namespace report
