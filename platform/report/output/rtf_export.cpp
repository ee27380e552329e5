#include "platform/report/output/rtf_export.h"

#include "platform/files/safe_file.h"
#include "platform/report/output/cell_table.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace report {

namespace {

/// Twentieths of a point.
int twips(int length) { return int(std::lround(length * 1440 / 2540.0)); }

QByteArray escaped(const QString &text)
{
    QByteArray result;
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (code == u'\n' || character == QChar::LineSeparator)
            result += "\\line ";
        else if (code == u'\\' || code == u'{' || code == u'}')
            result += QByteArray("\\") + char(code);
        else if (code >= 0x20 && code < 0x7f)
            result += char(code);
        else if (code >= 0x7f)
            result += "\\u" + QByteArray::number(qint16(code)) + '?';
    }
    return result;
}

/// The tables of fonts and colours at the beginning of the file, and their use.
class StyleTables {
public:
    explicit StyleTables(const Resources &resources)
        : m_resources(resources)
    {
        for (const Style &style : resources.styles) {
            numberOf(m_families, style.family);
            numberOf(m_colors, style.color.rgb());
            numberOf(m_colors, style.lineColor.rgb());
            if (style.fill.isValid())
                numberOf(m_colors, style.fill.rgb());
        }
    }

    QByteArray tables() const
    {
        QByteArray tables = "{\\fonttbl";
        for (qsizetype family = 0; family < m_families.size(); ++family)
            tables += "{\\f" + QByteArray::number(family) + "\\fnil\\fcharset134 " + escaped(m_families[family]) + ";}";
        tables += "}{\\colortbl;";
        for (const QRgb color : m_colors)
            tables += "\\red" + QByteArray::number(qRed(color)) + "\\green" + QByteArray::number(qGreen(color)) + "\\blue"
                + QByteArray::number(qBlue(color)) + ';';
        return tables + "}\n";
    }

    QByteArray cellFormat(const Style &style) const
    {
        QByteArray format = style.alignment & Qt::AlignBottom ? "\\clvertalb"
            : style.alignment & Qt::AlignVCenter              ? "\\clvertalc"
                                                              : "\\clvertalt";
        const std::pair<Side, const char *> sides[] { { LeftSide, "l" }, { TopSide, "t" }, { RightSide, "r" }, { BottomSide, "b" } };
        for (const auto &[side, letter] : sides) {
            if (style.sides & side)
                format += QByteArray("\\clbrdr") + letter + "\\brdrs\\brdrw5\\brdrcf" + color(style.lineColor);
        }
        if (style.fill.isValid())
            format += "\\clcbpat" + color(style.fill);
        return format;
    }

    QByteArray cellText(const Primitive &primitive) const
    {
        const Style &style = m_resources.styles[primitive.style];
        QByteArray text = style.alignment & Qt::AlignRight ? "\\qr" : style.alignment & Qt::AlignHCenter ? "\\qc" : "\\ql";
        text += "\\f" + QByteArray::number(m_families.indexOf(style.family)) + "\\fs" + QByteArray::number(std::lround(style.points * 2))
            + "\\cf" + color(style.color) + (style.bold ? "\\b" : "\\b0") + (style.italic ? "\\i" : "\\i0")
            + (style.underline ? "\\ul" : "\\ulnone");
        return text + ' ' + escaped(plainText(primitive)) + "\\cell\n";
    }

private:
    template <class Value>
    static void numberOf(QList<Value> &values, const Value &value)
    {
        if (!values.contains(value))
            values.append(value);
    }
    QByteArray color(const QColor &color) const { return QByteArray::number(m_colors.indexOf(color.rgb()) + 1); }

    const Resources &m_resources;
    QStringList m_families;
    QList<QRgb> m_colors;
};

/// One row of a table. Its cells stand where their boxes do, with empty ones in between.
QByteArray rowText(const CellRow &row, const StyleTables &styles, const Resources &resources)
{
    QByteArray cells = "\\trowd\\trgaph30\\trrh" + QByteArray::number(twips(row.height)) + "\n";
    QByteArray texts;
    int right = 0;
    for (const Cell &cell : row.cells) {
        const QRect &box = cell.primitive->box;
        if (box.x() > right + 10) {
            cells += "\\cellx" + QByteArray::number(twips(box.x()));
            texts += "\\cell\n";
        }
        // Texts that cover each other follow one another here.
        right = std::max(right + 100, box.x() + box.width());
        cells += styles.cellFormat(resources.styles[cell.primitive->style]) + "\\cellx" + QByteArray::number(twips(right)) + "\n";
        texts += styles.cellText(*cell.primitive);
    }
    return cells + "\\pard\\intbl\n" + texts + "\\row\n";
}

QByteArray gapText(int height)
{
    return height <= 50 ? QByteArray()
                        : QByteArray("\\pard\\fs2\\sl-" + QByteArray::number(std::max(20, twips(height))) + "\\slmult0\\par\n");
}

QByteArray headOf(QSize paper, const StyleTables &styles)
{
    return "{\\rtf1\\ansi\\ansicpg936\\uc1\\deff0" + styles.tables() + "\\paperw" + QByteArray::number(twips(paper.width())) + "\\paperh"
        + QByteArray::number(twips(paper.height())) + (paper.width() > paper.height() ? "\\landscape" : "")
        + "\\margl0\\margr0\\margt283\\margb0\n";
}

} // namespace

QString RtfExport::caption() const { return QStringLiteral("RTF 文档"); }

void RtfExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
    std::optional<StyleTables> styles;
    forEachPage(report, progress, [&](const Page &page) {
        int bottom = page.isEmpty() ? 0 : 500;
        if (!styles) {
            styles.emplace(report.resources());
            file.write(headOf(report.paper(), *styles));
        } else {
            file.write("\\pard\\fs2\\page\n");
        }
        for (const CellRow &row : cellRows(page, report.resources())) {
            file.write(gapText(row.top - bottom));
            file.write(rowText(row, *styles, report.resources()));
            bottom = row.top + row.height;
        }
    });
    file.write("}\n");
    file.commit();
}

} // namespace report
