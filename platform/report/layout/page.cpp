#include "platform/report/layout/page.h"

#include "platform/toolkit/exception.h"

#include <algorithm>
#include <limits>

namespace report {

quint16 Resources::styleNumber(const Style &style)
{
    const auto found = std::find(styles.begin(), styles.end(), style);
    if (found != styles.end())
        return quint16(found - styles.begin());
    if (styles.size() > std::numeric_limits<quint16>::max())
        throw Exception(QStringLiteral("报表的样式超过 65536 种"));
    styles.push_back(style);
    return quint16(styles.size() - 1);
}

void Drawing::text(const Style &style, const QRect &box, const QString &text)
{
    m_page.append({ .shape = Shape::Text, .style = m_resources.styleNumber(style), .source = m_source, .box = box, .text = text });
}

void Drawing::line(const Style &style, QPoint from, QPoint to)
{
    const QRect box(from.x(), from.y(), to.x() - from.x(), to.y() - from.y());
    m_page.append({ .shape = Shape::Line, .style = m_resources.styleNumber(style), .source = m_source, .box = box });
}

void Drawing::rectangle(const Style &style, const QRect &box)
{
    m_page.append({ .shape = Shape::Rectangle, .style = m_resources.styleNumber(style), .source = m_source, .box = box });
}

void Drawing::polygon(const Style &style, const QPolygon &points)
{
    m_page.append({ .shape = Shape::Polygon,
        .style = m_resources.styleNumber(style),
        .source = m_source,
        .box = points.boundingRect(),
        .points = points });
}

} // namespace report
