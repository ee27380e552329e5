#include "platform/grid/text_painter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QRect>
#include <QTextLayout>

#include <cmath>
#include <utility>

namespace platform {

namespace {

constexpr int unlimited = -1;
constexpr qsizetype generationSize = 8192; ///< lines; a page of a large screen shows about 1,500 cells
constexpr std::size_t mostFaces = 16;

/// Line breaks, tabs and other controls would leave the line.
QString withoutControls(QString text)
{
    for (QChar &character : text) {
        if (character < u' ')
            character = u' ';
    }
    return text;
}

} // namespace

void TextPainter::draw(QPainter &painter, const QRect &box, Qt::Alignment alignment, const QFont &font, const QString &text)
{
    if (text.isEmpty() || box.width() <= 0)
        return;
    Face &face = this->face(font);
    const Line *line = &this->line(face, text, unlimited);
    if (line->width > box.width())
        line = &this->line(face, text, box.width());
    qreal x = box.left();
    if (alignment & Qt::AlignRight)
        x += box.width() - std::ceil(line->width);
    else if (alignment & Qt::AlignHCenter)
        x += std::floor((box.width() - line->width) / 2);
    const qreal top = std::round(box.top() + box.height() / 2.0 + face.middle) - line->ascent;
    for (const QGlyphRun &run : line->runs)
        painter.drawGlyphRun(QPointF(x, top), run);
}

int TextPainter::width(const QFont &font, const QString &text)
{
    return text.isEmpty() ? 0 : int(std::ceil(line(face(font), text, unlimited).width));
}

TextPainter::Face &TextPainter::face(const QFont &font)
{
    for (Face &known : m_faces) {
        if (font.isCopyOf(known.font) || font == known.font)
            return known;
    }
    if (m_faces.size() >= mostFaces)
        m_faces.clear();
    const QFontMetricsF metrics(font);
    m_faces.push_back({ font, (metrics.ascent() - metrics.descent()) / 2, {}, {} });
    return m_faces.back();
}

const TextPainter::Line &TextPainter::line(Face &face, const QString &text, int room)
{
    const Key key { text, room };
    const auto young = face.young.constFind(key);
    if (young != face.young.cend())
        return *young;
    if (face.young.size() >= generationSize)
        face.old = std::exchange(face.young, {});
    const auto old = face.old.find(key);
    if (old == face.old.end())
        return *face.young.insert(key, layOut(face, text, room));
    Line line = std::move(*old);
    face.old.erase(old);
    return *face.young.insert(key, std::move(line));
}

TextPainter::Line TextPainter::layOut(const Face &face, const QString &text, int room)
{
    QString shown = withoutControls(text);
    if (room != unlimited)
        shown = QFontMetricsF(face.font).elidedText(shown, Qt::ElideRight, room);
    QTextLayout layout(shown, face.font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine textLine = layout.createLine();
    layout.endLayout();
    return { layout.glyphRuns(), textLine.naturalTextWidth(), textLine.ascent() };
}

} // namespace platform
