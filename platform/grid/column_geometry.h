#pragma once

#include <QList>
#include <QRect>

#include <algorithm>

namespace platform {

class ColumnModel;

/// Where the columns stand in a widget as wide as the grid's view: the indicator, the frozen columns, and the others, which
/// scroll sideways under them. All in pixels; hidden columns are 0 wide.
class ColumnGeometry {
public:
    /// `frozen` visible columns stay in place, or fewer when the view has no room for them all.
    void arrange(const ColumnModel &columns, int frozen, int indicatorWidth, int viewWidth);
    void setScroll(int pixels) { m_scroll = pixels; }
    /// In percent; in force from the next arrange().
    void setZoom(int percent) { m_zoom = percent; }
    int toScreen(int designed) const { return (designed * m_zoom + 50) / 100; } ///< pixels
    int toDesign(int pixels) const { return (pixels * 100 + m_zoom / 2) / m_zoom; }

    int scroll() const { return m_scroll; }
    int indicatorWidth() const { return m_indicatorWidth; }
    int viewWidth() const { return m_viewWidth; }
    /// Where the scrolling part begins.
    int frozenRight() const { return m_frozenRight; }
    bool isFrozen(int column) const { return column < m_frozenEnd; }
    bool hasFrozen() const { return m_frozenRight > m_indicatorWidth; }
    int left(int column) const { return m_indicatorWidth + m_edges[column] - (isFrozen(column) ? 0 : m_scroll); }
    int right(int column) const { return left(column) + m_edges[column + 1] - m_edges[column]; } ///< one past the last pixel
    int contentRight() const { return std::max(m_frozenRight, m_indicatorWidth + m_edges.last() - m_scroll); }
    int maximumScroll() const { return std::max(0, m_indicatorWidth + m_edges.last() - m_viewWidth); }
    /// The scroll position nearest to the present one that shows the whole column.
    int scrollToShow(int column) const;
    /// The column at a position, or -1 where there is none.
    int columnAt(int x) const;

    /// Neighbouring columns to paint, and where.
    struct Span {
        int first;
        int last;
        QRect clip;
    };
    /// The columns within `rect`: the scrolling ones, then the frozen ones.
    QList<Span> spans(const QRect &rect) const;

private:
    void addSpan(QList<Span> &spans, int begin, int end, const QRect &clip) const;

    QList<int> m_edges { 0 }; ///< left edge of each column as if nothing scrolled, and the right edge of the last
    int m_frozenEnd = 0; ///< index one past the last frozen column
    int m_frozenRight = 0;
    int m_indicatorWidth = 0;
    int m_viewWidth = 0;
    int m_scroll = 0;
    int m_zoom = 100;
};

} // namespace platform
