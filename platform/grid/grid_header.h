#pragma once

#include <QWidget>

namespace platform {

class ColumnGeometry;
class ColumnModel;
class TextPainter;
struct GridColors;

/// The titles of a grid, in one row or two: what stands before "|" in a caption is the upper title, drawn once over neighbouring
/// columns that share it. Reports what the mouse does; changes nothing itself.
class GridHeader : public QWidget {
    Q_OBJECT

public:
    GridHeader(const ColumnModel &columns, const ColumnGeometry &geometry, TextPainter &texts, QWidget *parent);

    void setMarked(int column); ///< as the one that was found; -1: none
    int preferredHeight() const;
    /// The width at which a column's title and sort mark can be read.
    int titleWidth(int column) const;

Q_SIGNALS:
    void clicked(int column, Qt::KeyboardModifiers modifiers);
    void cornerClicked(); ///< over the indicator column
    void widthDragged(int column, int width);
    void fitRequested(int column);
    void moveRequested(int from, int to);
    void menuRequested(int column, QPoint globalPosition); ///< column -1 beside the titles

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    /// A title: one column's own, or the upper title over several.
    struct Section {
        int first = -1;
        int last = -1;
        bool upper = false;
        QRect box {};
        bool isColumn() const { return first >= 0 && !upper; }
    };
    enum class Drag { None, Press, Resize, Move, Corner };

    int levels() const;
    int upperHeight() const;
    int lowerHeight() const;
    bool isWrapped(const QString &caption, int room) const;
    Section columnSection(int column) const;
    Section upperSection(int column) const;
    Section sectionAt(QPoint position) const;
    /// The column whose right border is near `position`, or -1.
    int borderAt(QPoint position) const;
    /// The index that a column dropped at `x` takes in before.
    int dropIndex(int x) const;
    void setHover(int column);
    void paintSection(QPainter &painter, const Section &section, const QRect &clip, const GridColors &colors) const;
    void paintCaption(QPainter &painter, const QRect &box, const QString &caption) const;
    int paintMark(QPainter &painter, const Section &section, const GridColors &colors) const;

    const ColumnModel &m_columns;
    const ColumnGeometry &m_geometry;
    TextPainter &m_texts;
    Drag m_drag = Drag::None;
    int m_column = -1; ///< the one pressed or dragged
    int m_hover = -1;
    int m_marked = -1;
    int m_dropIndex = -1;
    QPoint m_pressed;
    int m_pressedWidth = 0;
};

} // namespace platform
