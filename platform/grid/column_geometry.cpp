#include "platform/grid/column_geometry.h"

#include "platform/grid/column_model.h"

#include <algorithm>

namespace platform {

namespace {

/// What frozen columns must leave of the view for the others.
constexpr int scrollingRoom = 80;

} // namespace

void ColumnGeometry::arrange(const ColumnModel &columns, int frozen, int indicatorWidth, int viewWidth)
{
    m_indicatorWidth = indicatorWidth;
    m_viewWidth = viewWidth;
    m_frozenEnd = 0;
    m_frozenRight = indicatorWidth;
    m_edges = { 0 };
    int shown = 0;
    for (int column = 0; column < columns.count(); ++column) {
        const int width = columns.at(column).visible ? toScreen(columns.at(column).width) : 0;
        m_edges.append(m_edges.last() + width);
        if (width == 0)
            continue;
        const int right = indicatorWidth + m_edges.last();
        if (++shown <= frozen && m_frozenRight == indicatorWidth + m_edges[column] && right + scrollingRoom <= viewWidth) {
            m_frozenEnd = column + 1;
            m_frozenRight = right;
        }
    }
    m_scroll = std::min(m_scroll, maximumScroll());
}

int ColumnGeometry::scrollToShow(int column) const
{
    if (isFrozen(column))
        return m_scroll;
    const int tooFarRight = std::max(0, right(column) - m_viewWidth);
    const int tooFarLeft = std::max(0, m_frozenRight - left(column) + tooFarRight);
    return m_scroll + tooFarRight - tooFarLeft;
}

int ColumnGeometry::columnAt(int x) const
{
    const int content = x - m_indicatorWidth + (x < m_frozenRight ? 0 : m_scroll);
    if (content < 0 || content >= m_edges.last())
        return -1;
    return int(std::upper_bound(m_edges.begin(), m_edges.end(), content) - m_edges.begin()) - 1;
}

QList<ColumnGeometry::Span> ColumnGeometry::spans(const QRect &rect) const
{
    QList<Span> spans;
    const int columns = int(m_edges.size()) - 1;
    QRect scrolling = rect;
    scrolling.setLeft(std::max(rect.left(), m_frozenRight));
    QRect frozen = rect;
    frozen.setRight(std::min(rect.right(), m_frozenRight - 1));
    addSpan(spans, m_frozenEnd, columns, scrolling);
    addSpan(spans, 0, m_frozenEnd, frozen);
    return spans;
}

void ColumnGeometry::addSpan(QList<Span> &spans, int begin, int end, const QRect &clip) const
{
    while (begin < end && right(begin) <= clip.left())
        ++begin;
    while (begin < end && left(end - 1) > clip.right())
        --end;
    if (begin < end && !clip.isEmpty())
        spans.append({ begin, end - 1, clip });
}

} // namespace platform
