#include "client/export/table_format.h"

#include "platform/toolkit/exception.h"

#include <QFileInfo>
#include <QStringEncoder>

#include <algorithm>

namespace {

void appendUtf8(QByteArray &out, QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const qsizetype before = out.size();
    out.resize(before + encoder.requiredSpace(text.size()));
    out.truncate(encoder.appendToBuffer(out.data() + before, text) - out.constData());
}

/// Appends `text`, putting what `escape` gives in place of each of the `special` letters.
template <class Escape>
void appendEscaped(QByteArray &out, QStringView text, bool (*special)(QChar), Escape escape)
{
    while (!text.isEmpty()) {
        const qsizetype plain = std::find_if(text.begin(), text.end(), special) - text.begin();
        appendUtf8(out, text.first(plain));
        if (plain < text.size())
            escape(text[plain]);
        text = text.sliced(std::min(plain + 1, text.size()));
    }
}

/// Sign, digits, at most one point: what a spreadsheet reads as a number however it begins.
bool isPlainNumber(const QString &text)
{
    bool digits = false;
    bool point = false;
    for (qsizetype index = text.startsWith(u'-') || text.startsWith(u'+') ? 1 : 0; index < text.size(); ++index) {
        const char16_t letter = text[index].unicode();
        if (letter == u'.' && point)
            return false;
        if (letter != u'.' && (letter < u'0' || letter > u'9'))
            return false;
        (letter == u'.' ? point : digits) = true;
    }
    return digits;
}

bool runsAsFormula(const QString &text)
{
    return !text.isEmpty() && QStringView(u"=+-@\t\r\n").contains(text.front()) && !isPlainNumber(text);
}

class SeparatedFormat : public TableFormat {
public:
    explicit SeparatedFormat(char separator)
        : m_separator(separator)
    {
    }

    void appendTitles(QByteArray &out, const QList<ExportCell> &titles) override
    {
        out += "\xEF\xBB\xBF";
        appendRow(out, titles);
    }
    void appendRow(QByteArray &out, const QList<ExportCell> &cells) override
    {
        for (qsizetype column = 0; column < cells.size(); ++column) {
            if (column > 0)
                out += m_separator;
            appendCell(out, cells[column]);
        }
        out += "\r\n";
    }
    void appendEnd(QByteArray &, bool) override { }

private:
    bool mustBeQuoted(const QString &text) const
    {
        return std::any_of(text.begin(), text.end(),
            [this](QChar letter) { return letter == u'"' || letter == QLatin1Char(m_separator) || letter == u'\n' || letter == u'\r'; });
    }
    void appendCell(QByteArray &out, const ExportCell &cell) const
    {
        const bool guarded = !cell.number && runsAsFormula(cell.text);
        if (!guarded && !mustBeQuoted(cell.text))
            return appendUtf8(out, cell.text);
        out += guarded ? "\"\t" : "\"";
        appendEscaped(
            out, cell.text, [](QChar letter) { return letter == u'"'; }, [&out](QChar) { out += "\"\""; });
        out += '"';
    }

    char m_separator;
};

class JsonFormat : public TableFormat {
public:
    void appendTitles(QByteArray &out, const QList<ExportCell> &titles) override
    {
        out += R"({"columns":)";
        appendArray(out, titles);
        out += R"(,"rows":[)";
    }
    void appendRow(QByteArray &out, const QList<ExportCell> &cells) override
    {
        out += m_first ? "\n" : ",\n";
        m_first = false;
        appendArray(out, cells);
    }
    void appendEnd(QByteArray &out, bool truncated) override
    {
        out += truncated ? "\n],\"truncated\":true}\n" : "\n],\"truncated\":false}\n";
    }

private:
    static void appendArray(QByteArray &out, const QList<ExportCell> &cells)
    {
        out += '[';
        for (const ExportCell &cell : cells) {
            if (!cell.number)
                appendText(out, cell.text);
            else if (cell.text.isEmpty())
                out += "null";
            else
                appendUtf8(out, cell.text);
            out += ',';
        }
        if (out.endsWith(','))
            out.chop(1);
        out += ']';
    }

    static void appendText(QByteArray &out, const QString &text)
    {
        out += '"';
        appendEscaped(
            out, text, [](QChar letter) { return letter == u'"' || letter == u'\\' || letter < u' '; },
            [&out](QChar letter) {
                out += "\\u00";
                out += QByteArray::number(letter.unicode(), 16).rightJustified(2, '0');
            });
        out += '"';
    }

    bool m_first = true;
};

} // namespace

std::unique_ptr<TableFormat> TableFormat::of(const QString &fileName)
{
    const QString ending = QFileInfo(fileName).suffix().toLower();
    if (ending == u"csv")
        return std::make_unique<SeparatedFormat>(',');
    if (ending == u"txt")
        return std::make_unique<SeparatedFormat>('\t');
    if (ending == u"json")
        return std::make_unique<JsonFormat>();
    throw Exception(QStringLiteral("不能导出到“%1”：文件名请以 .csv、.txt 或 .json 结尾。").arg(fileName));
}
