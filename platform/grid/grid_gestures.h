#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPoint>

class QKeyEvent;
class QMouseEvent;
class TDBGridEh;

namespace platform {

class ColumnGeometry;
class ColumnModel;
enum class Extend;

/// What a person's mouse and keys mean in a grid's cells: pressing, dragging a selection (beyond the view it scrolls on), and the
/// keys that move the current cell. Acts through the grid's public functions; the caller catches what they throw.
class GridGestures : public QObject {
public:
    GridGestures(TDBGridEh &grid, const ColumnModel &columns, const ColumnGeometry &geometry);

    void press(QPoint position, Qt::KeyboardModifiers modifiers);
    void drag(QPoint position);
    void release();
    /// Arrows, Page keys, Home and End; false when the key is another.
    bool moveByKey(const QKeyEvent &event);
    /// Tab and Enter; false when the key is another, or Tab leaves the grid at one of its ends.
    bool moveByTab(const QKeyEvent &event);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void dragTo(QPoint position);

    TDBGridEh &m_grid;
    const ColumnModel &m_columns;
    const ColumnGeometry &m_geometry;
    Extend m_dragging;
    QPoint m_dragPosition;
    QBasicTimer m_dragTimer;
};

} // namespace platform
