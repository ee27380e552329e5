#include "platform/report/output/svg_page.h"

#include "platform/report/layout/text_face.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace report {

namespace {

constexpr qreal unitsPerPoint = 25.4 * millimetre / 72;

class SvgPage {
public:
    SvgPage(const Resources &resources, QSize size)
        : m_resources(resources)
        , m_xml(&m_bytes)
    {
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("svg"));
        m_xml.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
        put("width", QStringLiteral("%1mm").arg(size.width() / double(millimetre)));
        put("height", QStringLiteral("%1mm").arg(size.height() / double(millimetre)));
        put("viewBox", QStringLiteral("0 0 %1 %2").arg(size.width()).arg(size.height()));
    }

    void add(const Primitive &primitive)
    {
        const Style &style = m_resources.styles[primitive.style];
        switch (primitive.shape) {
        case Shape::Text:
            return addText(primitive, style);
        case Shape::Line:
            return addLine(primitive.box, style);
        case Shape::Rectangle:
            begin("rect");
            put("x", primitive.box.x());
            put("y", primitive.box.y());
            put("width", primitive.box.width());
            put("height", primitive.box.height());
            return end(style);
        case Shape::Polygon:
            return addPolygon(primitive.points, style);
        case Shape::Image:
            return;
        }
    }

    QByteArray finished()
    {
        m_xml.writeEndDocument();
        return m_bytes;
    }

private:
    void begin(const char *element) { m_xml.writeStartElement(QString::fromLatin1(element)); }
    void put(const char *name, const QString &value) { m_xml.writeAttribute(QString::fromLatin1(name), value); }
    void put(const char *name, double value) { put(name, QString::number(value)); }
    /// Ends a shape with its filling and its border.
    void end(const Style &style)
    {
        put("fill", style.fill.isValid() ? style.fill.name() : QStringLiteral("none"));
        if (style.lineWidth > 0 && (style.sides != NoSide || !style.fill.isValid() || style.lineColor != Qt::black)) {
            put("stroke", style.lineColor.name());
            put("stroke-width", style.lineWidth);
        }
        m_xml.writeEndElement();
    }
    void addLine(const QRect &box, const Style &style)
    {
        begin("line");
        put("x1", box.x());
        put("y1", box.y());
        put("x2", box.x() + box.width());
        put("y2", box.y() + box.height());
        put("stroke", style.color.name());
        put("stroke-width", style.lineWidth);
        m_xml.writeEndElement();
    }
    void addPolygon(const QPolygon &points, const Style &style)
    {
        QStringList places;
        for (const QPoint point : points)
            places.append(QStringLiteral("%1,%2").arg(point.x()).arg(point.y()));
        begin(style.fill.isValid() ? "polygon" : "polyline");
        put("points", places.join(u' '));
        end(style);
    }
    void addText(const Primitive &primitive, const Style &style)
    {
        if (primitive.text.isEmpty())
            return;
        const QRect &box = primitive.box;
        const int height = lineHeight(style);
        const int middle = style.alignment & Qt::AlignBottom ? box.y() + box.height() - height / 2
            : style.alignment & Qt::AlignVCenter             ? box.y() + box.height() / 2
                                                             : box.y() + height / 2;
        const bool right = style.alignment & Qt::AlignRight;
        const bool centre = style.alignment & Qt::AlignHCenter;
        const qreal size = style.points * unitsPerPoint;
        begin("text");
        put("x", right ? box.x() + box.width() - textPadding : centre ? box.x() + box.width() / 2.0 : box.x() + textPadding);
        put("y", middle + 0.38 * size);
        put("font-family", style.family);
        put("font-size", size);
        if (style.bold)
            put("font-weight", QStringLiteral("bold"));
        put("text-anchor", QString::fromLatin1(right ? "end" : centre ? "middle" : "start"));
        put("fill", style.color.name());
        QString shown = m_faces.face(primitive.style, style).elided(primitive.text, box.width());
        // XML has no way to write them.
        std::ranges::replace_if(
            shown, [](QChar letter) { return letter < u' '; }, u' ');
        m_xml.writeCharacters(shown);
        m_xml.writeEndElement();
    }

    const Resources &m_resources;
    TextFaces m_faces;
    QByteArray m_bytes;
    QXmlStreamWriter m_xml;
};

} // namespace

QByteArray svgOf(const Resources &resources, const Page &page, QSize size)
{
    SvgPage svg(resources, size);
    for (const Primitive &primitive : page)
        svg.add(primitive);
    return svg.finished();
}

} // namespace report
