#pragma once

#include <QWidget>

#include <functional>

namespace platform {

class ColumnGeometry;
class ColumnModel;
class TextPainter;

/// The footer rows of a grid, aligned under its columns.
class GridFooter : public QWidget {
public:
    /// `text` gives the text of a footer row and a column.
    GridFooter(const ColumnModel &columns, const ColumnGeometry &geometry, TextPainter &texts,
        std::function<QString(int row, int column)> text, QWidget *parent);

    int rows() const { return m_rows; }
    void setRows(int rows) { m_rows = rows; }
    void setRowHeight(int height) { m_rowHeight = height; }
    void setColor(const QColor &color);
    /// Invalid: whatever can be read on the background.
    void setTextColor(const QColor &color) { m_textColor = color; }
    int preferredHeight() const { return m_rows == 0 ? 0 : m_rows * m_rowHeight + 1; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintCell(QPainter &painter, int row, int column) const;

    const ColumnModel &m_columns;
    const ColumnGeometry &m_geometry;
    TextPainter &m_texts;
    std::function<QString(int, int)> m_text;
    QColor m_color; ///< invalid: that of the titles
    QColor m_textColor;
    int m_rows = 0;
    int m_rowHeight = 0;
};

} // namespace platform
