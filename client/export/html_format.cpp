#include "client/export/table_format.h"

#include "platform/files/cell_text.h"

#include <memory>

namespace client {

namespace {

constexpr std::string_view styles = R"(<style>
body { font-family: "Noto Sans CJK SC", "Microsoft YaHei", sans-serif; font-size: 10pt }
table { border-collapse: collapse; margin-bottom: 1em }
th, td { border: 1px solid #c0c8d0; padding: 2px 6px; white-space: pre-wrap }
th { background: #eef2f6 }
tfoot td { font-weight: bold; background: #f6f8fa }
.notes th { text-align: left }
.n { text-align: right }
)";

std::string escaped(const QString &text) { return text.toHtmlEscaped().toStdString(); }

std::string_view classOf(CellKind kind)
{
    switch (kind) {
    case CellKind::Text:
        return "t";
    case CellKind::Time:
        return "d";
    default:
        return "n";
    }
}

std::string notesTable(const QList<ExportNote> &notes)
{
    std::string rows;
    for (const ExportNote &note : notes)
        rows += "<tr><th>" + escaped(note.caption) + "</th><td class=\"t\">" + escaped(note.value) + "</td></tr>\n";
    return rows.empty() ? rows : "<table class=\"notes\">\n" + rows + "</table>\n";
}

class HtmlFormat : public TableFormat {
public:
    void appendHead(files::TextBuffer &out, const ExportTable &table) const override
    {
        const std::string title = escaped(table.title);
        out += "<!DOCTYPE html>\n<html lang=\"zh-CN\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + title + "</title>\n";
        out += styles;
        out += ".t { " + std::string(files::textCellStyle) + " }\n.d { " + std::string(files::timeCellStyle) + "; white-space: nowrap }\n";
        out += "</style>\n</head>\n<body>\n<h1>" + title + "</h1>\n";
        out += notesTable(table.notes) + "<table>\n<thead><tr>";
        for (const ExportColumn &column : table.columns)
            out += "<th>" + escaped(column.title) + "</th>";
        out += "</tr></thead>\n<tbody>\n";
    }
    void appendTail(files::TextBuffer &out, const ExportTable &table) const override
    {
        std::string footers;
        for (int row = 0; row < table.footerRows; ++row) {
            footers += "<tr>";
            for (const ExportColumn &column : table.columns) {
                footers += column.footers[row].number ? "<td class=\"n\">" : "<td class=\"t\">";
                footers += escaped(column.footers[row].text) + "</td>";
            }
            footers += "</tr>\n";
        }
        out += "</tbody>\n" + (footers.empty() ? footers : "<tfoot>\n" + footers + "</tfoot>\n") + "</table>\n</body>\n</html>\n";
    }
    std::string_view beforeRow(bool) const override { return "<tr>"; }
    std::string_view afterRow() const override { return "</td></tr>\n"; }
    std::string beforeCell(const ExportTable &table, std::size_t column) const override
    {
        return std::string(column > 0 ? "</td>" : "").append("<td class=\"").append(classOf(table.columns[column].kind)).append("\">");
    }
    void appendText(files::TextBuffer &out, std::string_view text) const override { files::appendHtmlText(out, text); }
};

} // namespace

std::unique_ptr<TableFormat> htmlFormat() { return std::make_unique<HtmlFormat>(); }

} // namespace client
