#include "platform/grid/grid_selection.h"

#include <algorithm>
#include <cstdlib>

namespace platform {

namespace {

QRect between(QPoint one, QPoint other)
{
    return QRect(QPoint(std::min(one.x(), other.x()), std::min(one.y(), other.y())),
        QPoint(std::max(one.x(), other.x()), std::max(one.y(), other.y())));
}

/// What remains of `range` without one of its cells: at most four rectangles.
QList<QRect> without(const QRect &range, QPoint cell)
{
    const QRect parts[] {
        QRect(range.topLeft(), QPoint(range.right(), cell.y() - 1)),
        QRect(QPoint(range.left(), cell.y()), QPoint(cell.x() - 1, cell.y())),
        QRect(QPoint(cell.x() + 1, cell.y()), QPoint(range.right(), cell.y())),
        QRect(QPoint(range.left(), cell.y() + 1), range.bottomRight()),
    };
    QList<QRect> remaining;
    for (const QRect &part : parts) {
        if (!part.isEmpty())
            remaining.append(part);
    }
    return remaining;
}

} // namespace

bool GridSelection::contains(QPoint cell) const
{
    return std::any_of(m_ranges.begin(), m_ranges.end(), [cell](const QRect &range) { return range.contains(cell); });
}

void GridSelection::start(QPoint cell)
{
    m_ranges.clear();
    m_anchor = cell;
}

void GridSelection::extendTo(QPoint cell) { replaceNewest(between(m_anchor, cell)); }

void GridSelection::extendToRow(int row, int columns)
{
    replaceNewest(QRect(0, std::min(row, m_anchor.y()), columns, std::abs(row - m_anchor.y()) + 1));
}

void GridSelection::add(const QRect &range)
{
    m_anchor = range.topLeft();
    m_ranges.append(range);
}

void GridSelection::toggle(QPoint cell)
{
    if (!contains(cell))
        return add(QRect(cell, QSize(1, 1)));
    QList<QRect> remaining;
    for (const QRect &range : std::as_const(m_ranges))
        remaining += range.contains(cell) ? without(range, cell) : QList<QRect> { range };
    m_ranges = remaining;
    m_anchor = cell;
}

void GridSelection::replaceNewest(const QRect &range)
{
    if (m_ranges.isEmpty())
        m_ranges.append(range);
    else
        m_ranges.last() = range;
}

} // namespace platform
