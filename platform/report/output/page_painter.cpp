#include "platform/report/output/page_painter.h"

#include <QPainter>

#include <algorithm>

namespace report {

namespace {

/// Narrower than this a text is not squeezed; it ends with "…" then, and a number becomes "#".
constexpr qreal narrowest = 0.7;

QPen penOf(const Style &style, const QColor &color)
{
    QPen pen(color, style.lineWidth, style.lineStyle, Qt::FlatCap, Qt::MiterJoin);
    return style.lineWidth == 0 ? QPen(Qt::NoPen) : pen;
}

} // namespace

void PagePainter::paint(QPainter &painter, const Page &page)
{
    for (const Primitive &primitive : page) {
        const Style &style = m_resources.styles[primitive.style];
        const QRect &box = primitive.box;
        switch (primitive.shape) {
        case Shape::Text:
            paintText(painter, primitive);
            break;
        case Shape::Line:
            painter.setPen(penOf(style, style.color));
            painter.drawLine(box.x(), box.y(), box.x() + box.width(), box.y() + box.height());
            break;
        case Shape::Rectangle:
            painter.setPen(style.sides == NoSide && style.fill.isValid() ? QPen(Qt::NoPen) : penOf(style, style.lineColor));
            painter.setBrush(style.fill.isValid() ? QBrush(style.fill) : QBrush(Qt::NoBrush));
            painter.drawRect(box);
            break;
        case Shape::Polygon:
            painter.setPen(penOf(style, style.lineColor));
            painter.setBrush(style.fill.isValid() ? QBrush(style.fill) : QBrush(Qt::NoBrush));
            if (style.fill.isValid())
                painter.drawPolygon(primitive.points);
            else
                painter.drawPolyline(primitive.points);
            break;
        case Shape::Image:
            const QImage &picture = image(primitive.image);
            const QSize size = picture.size().scaled(box.size(), Qt::KeepAspectRatio);
            painter.drawImage(QRect(box.center() - QPoint(size.width(), size.height()) / 2, size), picture);
            break;
        }
    }
}

void PagePainter::paintText(QPainter &painter, const Primitive &primitive)
{
    const Style &style = m_resources.styles[primitive.style];
    if (style.fill.isValid())
        painter.fillRect(primitive.box, style.fill);
    if (style.sides != NoSide)
        paintFrame(painter, primitive.box, style);
    if (primitive.text.isEmpty())
        return;
    painter.setPen(style.color);
    const TextFace &face = m_faces.face(primitive.style, style);
    const int height = face.lineHeight();
    const QStringList lines = QString(primitive.text).replace(QChar(QChar::LineSeparator), u'\n').split(u'\n');
    const int shown = std::clamp(int(lines.size()), 1, std::max(1, (primitive.box.height() + height / 4) / height));
    const int spare = primitive.box.height() - shown * height;
    qreal y = primitive.box.y();
    if (style.alignment & Qt::AlignVCenter)
        y += spare / 2.0;
    else if (style.alignment & Qt::AlignBottom)
        y += spare;
    for (int line = 0; line < shown; ++line, y += height) {
        const bool cut = line + 1 == shown && shown < lines.size();
        QString text = cut ? QString(lines[line] + QStringLiteral("…")) : lines[line];
        if (!primitive.number.isEmpty() && face.width(text) * narrowest > primitive.box.width())
            text = QString(text.size(), u'#');
        paintLine(painter, QRectF(primitive.box.x(), y, primitive.box.width(), height), text, style.alignment, face);
    }
}

void PagePainter::paintLine(QPainter &painter, const QRectF &box, QString text, Qt::Alignment alignment, const TextFace &face) const
{
    const qreal room = std::max(1.0, box.width() - 2 * textPadding);
    qreal width = face.width(text);
    if (width * narrowest > room && text.size() > 1) {
        text = face.elided(text, room / narrowest);
        width = face.width(text);
    }
    const qreal scale = width > room ? std::max(narrowest / 2, room / width) : 1;
    width *= scale;
    qreal x = box.x() + textPadding;
    if (alignment & Qt::AlignHCenter)
        x += (room - width) / 2;
    else if (alignment & Qt::AlignRight)
        x += room - width;
    // The middle of Chinese letters and of capitals is 0.38 of the letter's height above the baseline.
    const qreal baseline = box.center().y() + 0.38 * face.font().pixelSize();
    if (scale == 1)
        return face.draw(painter, { x, baseline }, text);
    painter.save();
    painter.translate(x, baseline);
    painter.scale(scale, 1);
    face.draw(painter, {}, text);
    painter.restore();
}

void PagePainter::paintFrame(QPainter &painter, const QRect &box, const Style &style) const
{
    painter.setPen(penOf(style, style.lineColor));
    painter.setBrush(Qt::NoBrush);
    if (style.sides == AllSides) {
        painter.drawRect(box);
        return;
    }
    const int right = box.x() + box.width();
    const int bottom = box.y() + box.height();
    if (style.sides & LeftSide)
        painter.drawLine(box.x(), box.y(), box.x(), bottom);
    if (style.sides & TopSide)
        painter.drawLine(box.x(), box.y(), right, box.y());
    if (style.sides & RightSide)
        painter.drawLine(right, box.y(), right, bottom);
    if (style.sides & BottomSide)
        painter.drawLine(box.x(), bottom, right, bottom);
}

const QImage &PagePainter::image(int index)
{
    auto found = m_images.find(index);
    if (found == m_images.end())
        found = m_images.insert(index, QImage::fromData(m_resources.images[index]));
    return *found;
}

} // namespace report
