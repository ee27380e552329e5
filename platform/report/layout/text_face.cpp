#include "platform/report/layout/text_face.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace report {

namespace {

/// The families that stand in for one that a system lacks, so that Chinese and Latin letters come from one font.
QStringList familiesOf(const QString &family)
{
    static const QHash<QString, QStringList> likes {
        { QStringLiteral("宋体"), { QStringLiteral("SimSun"), QStringLiteral("NSimSun"), QStringLiteral("Noto Serif CJK SC") } },
        { QStringLiteral("黑体"), { QStringLiteral("SimHei"), QStringLiteral("Microsoft YaHei"), QStringLiteral("Noto Sans CJK SC") } },
        { QStringLiteral("楷体"), { QStringLiteral("KaiTi"), QStringLiteral("Noto Serif CJK SC") } },
    };
    QStringList families { family };
    families += likes.value(family);
    families << QStringLiteral("Noto Sans CJK SC") << QStringLiteral("Microsoft YaHei");
    return families;
}

qreal emOf(const Style &style) { return style.points * 25.4 / 72 * millimetre; }

QFont fontOf(const Style &style)
{
    QFont font;
    font.setFamilies(familiesOf(style.family));
    font.setPixelSize(std::max(1, int(std::lround(emOf(style)))));
    font.setBold(style.bold);
    font.setItalic(style.italic);
    font.setUnderline(style.underline);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

bool standsAlone(QChar character)
{
    const QChar::Direction direction = character.direction();
    return character.isPrint() && !character.isSurrogate() && !character.isMark() && direction != QChar::DirR && direction != QChar::DirAL;
}

/// Between words, and between Chinese letters unless the line would begin with a mark that belongs to what stands before.
bool mayBreak(QChar before, QChar after)
{
    static const QString neverFirst = QStringLiteral("，。、；：！？）》」』】”’%,.;:!?)");
    static const QString neverLast = QStringLiteral("（《「『【“‘(");
    const auto isWide = [](QChar character) { return character.unicode() >= 0x2E80; };
    return (before == u' ' || isWide(before) || isWide(after)) && after != u' ' && !neverFirst.contains(after)
        && !neverLast.contains(before) && !after.isLowSurrogate() && !after.isMark();
}

} // namespace

int lineHeight(const Style &style) { return int(std::ceil(emOf(style) * 1.3)); }

TextFace::TextFace(const Style &style)
    : m_font(fontOf(style))
    , m_lineHeight(report::lineHeight(style))
{
    // The painter draws underlines only for texts that it sets itself.
    if (!style.underline)
        m_raw = QRawFont::fromFont(m_font, QFontDatabase::SimplifiedChinese);
}

const TextFace::Glyph *TextFace::glyph(QChar character) const
{
    auto found = m_glyphs.find(character);
    if (found == m_glyphs.end()) {
        Glyph glyph;
        if (m_raw.isValid() && standsAlone(character)) {
            const QList<quint32> indexes = m_raw.glyphIndexesForString(QString(character));
            const QList<QPointF> advances = m_raw.advancesForGlyphIndexes(indexes);
            if (indexes.size() == 1)
                glyph = { indexes[0], advances[0].x() };
        }
        found = m_glyphs.insert(character, glyph);
    }
    return found->index == 0 ? nullptr : &*found;
}

bool TextFace::isSimple(const QString &line) const
{
    return std::all_of(line.begin(), line.end(), [this](QChar character) { return glyph(character); });
}

qreal TextFace::width(const QString &line) const
{
    qreal width = 0;
    for (const QChar character : line) {
        const Glyph *found = glyph(character);
        if (!found)
            return QFontMetricsF(m_font).horizontalAdvance(line);
        width += found->advance;
    }
    return width;
}

void TextFace::draw(QPainter &painter, QPointF baseline, const QString &line) const
{
    if (!isSimple(line)) {
        painter.setFont(m_font);
        painter.drawText(baseline, line);
        return;
    }
    QList<quint32> indexes;
    QList<QPointF> positions;
    indexes.reserve(line.size());
    positions.reserve(line.size());
    qreal x = 0;
    for (const QChar character : line) {
        const Glyph *found = glyph(character);
        indexes.append(found->index);
        positions.append({ x, 0 });
        x += found->advance;
    }
    QGlyphRun run;
    run.setRawFont(m_raw);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    painter.drawGlyphRun(baseline, run);
}

QString TextFace::wrapped(const QString &text, int boxWidth) const
{
    const qreal room = std::max(1, boxWidth - 2 * textPadding);
    QString result;
    qsizetype begin = 0;
    while (begin <= text.size()) {
        const qsizetype end = text.indexOf(u'\n', begin);
        const QString paragraph = text.mid(begin, end < 0 ? -1 : end - begin);
        if (begin > 0)
            result += u'\n';
        if (width(paragraph) <= room)
            result += paragraph;
        else
            wrapParagraph(paragraph, room, result);
        if (end < 0)
            break;
        begin = end + 1;
    }
    return result;
}

void TextFace::wrapParagraph(const QString &paragraph, qreal room, QString &result) const
{
    qsizetype begin = 0;
    qsizetype lastBreak = 0; // where the line may end
    qreal used = 0;
    for (qsizetype position = 0; position < paragraph.size(); ++position) {
        const Glyph *found = glyph(paragraph[position]);
        const qreal advance = found ? found->advance : width(paragraph.mid(position, 1));
        if (position > begin && mayBreak(paragraph[position - 1], paragraph[position]))
            lastBreak = position;
        if (used + advance > room && position > begin) {
            const qsizetype end = lastBreak > begin ? lastBreak : position;
            result += QStringView(paragraph).mid(begin, end - begin);
            result += QChar(QChar::LineSeparator);
            begin = end;
            used = width(paragraph.mid(begin, position - begin));
        }
        used += advance;
    }
    result += QStringView(paragraph).mid(begin);
}

int TextFace::boxHeight(const QString &text) const
{
    const qsizetype lines = 1 + text.count(u'\n') + text.count(QChar(QChar::LineSeparator));
    return int(lines) * m_lineHeight + textPadding;
}

QString TextFace::elided(const QString &line, qreal room) const { return QFontMetricsF(m_font).elidedText(line, Qt::ElideRight, room); }

const TextFace &TextFaces::face(quint16 number, const Style &style)
{
    const auto found = m_faces.find(number);
    return found != m_faces.end() ? found->second : m_faces.emplace(number, style).first->second;
}

} // namespace report
