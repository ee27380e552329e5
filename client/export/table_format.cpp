#include "client/export/table_format.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Sign, digits, at most one point: what a spreadsheet reads as a number however it begins.
bool isPlainNumber(std::string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    return std::ranges::any_of(text, isDigit) && std::ranges::count(text, '.') <= 1
        && std::ranges::all_of(text, [](char letter) { return isDigit(letter) || letter == '.'; });
}

bool runsAsFormula(std::string_view text)
{
    return !text.empty() && std::string_view("=+-@\t\r\n").find(text.front()) != std::string_view::npos && !isPlainNumber(text);
}

class SeparatedFormat : public TableFormat {
public:
    explicit SeparatedFormat(char separator)
        : m_separator(separator)
    {
        for (const char letter : { '"', '\n', '\r', separator })
            m_special[static_cast<unsigned char>(letter)] = true;
    }

    void appendHead(TextBuffer &out, const ExportTable &table) const override
    {
        out += "\xEF\xBB\xBF";
        appendTitles(out, table);
        out += "\r\n";
    }
    void appendTail(TextBuffer &, const ExportTable &) const override { }
    std::string_view beforeRow(bool) const override { return {}; }
    std::string_view afterRow() const override { return "\r\n"; }
    std::string beforeCell(const ExportTable &, std::size_t column) const override { return std::string(column > 0 ? 1 : 0, m_separator); }
    void appendText(TextBuffer &out, std::string_view text) const override
    {
        const bool guarded = runsAsFormula(text);
        if (!guarded && std::ranges::none_of(text, [this](char letter) { return m_special[static_cast<unsigned char>(letter)]; })) {
            out += text;
            return;
        }
        out += guarded ? "\"\t" : "\"";
        for (const char letter : text) {
            if (letter == '"')
                out += '"';
            out += letter;
        }
        out += '"';
    }

private:
    char m_separator;
    std::array<bool, 256> m_special {}; ///< letters for which a cell is quoted
};

class JsonFormat : public TableFormat {
public:
    void appendHead(TextBuffer &out, const ExportTable &table) const override
    {
        out += R"({"columns":[)";
        appendTitles(out, table);
        out += R"(],"rows":[)";
    }
    void appendTail(TextBuffer &out, const ExportTable &table) const override
    {
        out += table.truncated ? "\n],\"truncated\":true}\n" : "\n],\"truncated\":false}\n";
    }
    std::string_view beforeRow(bool first) const override { return first ? "\n[" : ",\n["; }
    std::string_view afterRow() const override { return "]"; }
    std::string beforeCell(const ExportTable &, std::size_t column) const override { return column > 0 ? "," : ""; }
    std::string_view quote() const override { return "\""; }
    std::string_view noNumber() const override { return "null"; }
    void appendText(TextBuffer &out, std::string_view text) const override
    {
        static constexpr char digits[] = "0123456789abcdef";
        out += '"';
        for (const char letter : text) {
            const auto code = static_cast<unsigned char>(letter);
            if (letter == '"' || letter == '\\')
                (out += '\\') += letter;
            else if (code < ' ')
                ((out += "\\u00") += digits[code >> 4]) += digits[code & 15];
            else
                out += letter;
        }
        out += '"';
    }
};

} // namespace

void TableFormat::appendTitles(TextBuffer &out, const ExportTable &table) const
{
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        out += beforeCell(table, column);
        appendText(out, table.columns[column].title.toStdString());
    }
}

std::unique_ptr<TableFormat> TableFormat::of(const QString &fileName)
{
    const QString ending = QFileInfo(fileName).suffix().toLower();
    if (ending == u"csv")
        return std::make_unique<SeparatedFormat>(',');
    if (ending == u"txt")
        return std::make_unique<SeparatedFormat>('\t');
    if (ending == u"json")
        return std::make_unique<JsonFormat>();
    return ending == u"html" || ending == u"htm" ? htmlFormat() : nullptr;
}
