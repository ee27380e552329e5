#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

namespace platform {

/// The selected cells as rectangles (x: column, y: row), and the anchor from which Shift and dragging extend.
class GridSelection {
public:
    const QList<QRect> &ranges() const { return m_ranges; }
    bool isEmpty() const { return m_ranges.isEmpty(); }
    bool contains(QPoint cell) const;

    void clear() { m_ranges.clear(); }
    /// Nothing selected; extending will start from `cell`.
    void start(QPoint cell);
    /// Replaces the newest range by the one from the anchor to `cell`.
    void extendTo(QPoint cell);
    void extendToRow(int row, int columns); ///< the same with whole rows
    /// Adds a range whose anchor is its upper left cell.
    void add(const QRect &range);
    /// Adds a cell, or takes it out of the ranges that hold it.
    void toggle(QPoint cell);

private:
    void replaceNewest(const QRect &range);
    QPoint m_anchor;
    QList<QRect> m_ranges;
};

} // namespace platform
