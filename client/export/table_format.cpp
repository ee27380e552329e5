#include "client/export/table_format.h"

#include "packet/text.h"

#include <QFileInfo>

namespace client {

namespace {

class SeparatedFormat : public TableFormat {
public:
    SeparatedFormat(char separator, files::TabGuard guard)
        : m_separator(separator)
        , m_cells(separator, guard)
    {
    }

    void appendHead(files::TextBuffer &out, const ExportTable &table) const override
    {
        out += "\xEF\xBB\xBF";
        appendTitles(out, table);
        out += "\r\n";
    }
    void appendTail(files::TextBuffer &out, const ExportTable &table) const override
    {
        if (!table.truncationNotice.isEmpty())
            out += table.truncationNotice.toStdString() + "\r\n";
    }
    std::string_view beforeRow(bool) const override { return {}; }
    std::string_view afterRow() const override { return "\r\n"; }
    std::string beforeCell(const ExportTable &, std::size_t column) const override { return std::string(column > 0 ? 1 : 0, m_separator); }
    void appendText(files::TextBuffer &out, std::string_view text) const override { m_cells.append(out, text); }

private:
    char m_separator;
    files::SeparatedCells m_cells;
};

class JsonFormat : public TableFormat {
public:
    void appendHead(files::TextBuffer &out, const ExportTable &table) const override
    {
        out += R"({"columns":[)";
        appendTitles(out, table);
        out += R"(],"rows":[)";
    }
    void appendTail(files::TextBuffer &out, const ExportTable &table) const override
    {
        out += table.truncated ? "\n],\"truncated\":true}\n" : "\n],\"truncated\":false}\n";
    }
    std::string_view beforeRow(bool first) const override { return first ? "\n[" : ",\n["; }
    std::string_view afterRow() const override { return "]"; }
    std::string beforeCell(const ExportTable &, std::size_t column) const override { return column > 0 ? "," : ""; }
    std::string_view quote() const override { return "\""; }
    std::string_view noNumber() const override { return "null"; }
    void appendText(files::TextBuffer &out, std::string_view text) const override { packet::appendJsonText(text, out); }
};

} // namespace

void TableFormat::appendTitles(files::TextBuffer &out, const ExportTable &table) const
{
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        out += beforeCell(table, column);
        appendText(out, table.columns[column].title.toStdString());
    }
}

std::unique_ptr<TableFormat> TableFormat::of(const QString &fileName, files::TabGuard guard)
{
    const QString ending = QFileInfo(fileName).suffix().toLower();
    if (ending == u"csv")
        return std::make_unique<SeparatedFormat>(',', guard);
    if (ending == u"txt")
        return std::make_unique<SeparatedFormat>('\t', guard);
    if (ending == u"json")
        return std::make_unique<JsonFormat>();
    return ending == u"html" || ending == u"htm" ? htmlFormat() : nullptr;
}

} // namespace client
