#include "platform/report/output/pdf_text.h"

#include "platform/report/layout/text_face.h"
#include "platform/toolkit/exception.h"

#include <QFileDevice>

#include <algorithm>
#include <functional>
#include <string_view>

namespace report {

namespace {

/// Below this lie the characters that share a glyph with a usual one: controls, blanks, marks and the radicals.
constexpr char16_t firstUsual = 0x3000;

QList<quint32> glyphsOf(const QRawFont &font, char16_t first, char16_t end)
{
    QString characters;
    for (char16_t code = first; code < end; ++code)
        characters += QChar(code);
    return font.glyphIndexesForString(characters);
}

} // namespace

void PdfText::take(const Page &page)
{
    for (const Primitive &primitive : page) {
        for (const QChar character : primitive.text)
            m_drawn.set(character.unicode());
    }
}

PdfText::Meanings PdfText::meanings(const Resources &resources) const
{
    Meanings meanings;
    QStringList families;
    for (const Style &style : resources.styles) {
        if (families.contains(style.family))
            continue;
        families.append(style.family);
        const QRawFont font = QRawFont::fromFont(TextFace(style).font(), QFontDatabase::SimplifiedChinese);
        QHash<quint32, char16_t> drawnByGlyph;
        for (std::size_t code = 0; code < m_drawn.size(); ++code) {
            if (!m_drawn[code])
                continue;
            const QList<quint32> glyphs = font.glyphIndexesForString(QString(QChar(char16_t(code))));
            if (glyphs.size() == 1 && glyphs[0] != 0)
                drawnByGlyph.insert(glyphs[0], char16_t(code));
        }
        const QList<quint32> glyphs = glyphsOf(font, 0, firstUsual);
        for (qsizetype code = 0; code < glyphs.size(); ++code) {
            const auto drawn = drawnByGlyph.constFind(glyphs[code]);
            if (drawn != drawnByGlyph.cend() && !m_drawn[std::size_t(code)])
                meanings.insert(char16_t(code), *drawn);
        }
    }
    return meanings;
}

void PdfText::repair(QFileDevice &file, const Resources &resources) const
{
    constexpr std::string_view tableBegin = "beginbfrange";
    constexpr std::string_view tableEnd = "endcmap";
    if (!file.flush())
        return;
    const Meanings meanings = this->meanings(resources);
    uchar *mapped = file.map(0, file.size());
    if (!mapped)
        throw Exception(QStringLiteral("文件“%1”太大，请分几次导出。").arg(file.fileName()));
    char *begin = reinterpret_cast<char *>(mapped);
    char *end = begin + file.size();
    const std::boyer_moore_horspool_searcher search(tableBegin.begin(), tableBegin.end());
    for (char *table = std::search(begin, end, search); table != end; table = std::search(table, end, search)) {
        char *tableStop = std::search(table, end, tableEnd.begin(), tableEnd.end());
        repairTable(table, tableStop, meanings);
        table = tableStop;
    }
    file.unmap(mapped);
}

void PdfText::repairTable(char *begin, char *end, const Meanings &meanings)
{
    bool inList = false; // only there each glyph is named by itself
    for (char *place = begin; place + 6 <= end; ++place) {
        if (*place == '[' || *place == ']')
            inList = *place == '[';
        if (!inList || *place != '<' || place[5] != '>')
            continue;
        const auto meaning = meanings.constFind(char16_t(QByteArray(place + 1, 4).toUInt(nullptr, 16)));
        if (meaning != meanings.cend())
            QByteArray::number(uint(*meaning), 16).rightJustified(4, '0').toUpper().toStdString().copy(place + 1, 4);
    }
}

} // namespace report
