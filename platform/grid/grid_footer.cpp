#include "platform/grid/grid_footer.h"

#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/text_painter.h"

#include <QPaintEvent>
#include <QPainter>

namespace platform {

namespace {

constexpr int textMargin = 3;

} // namespace

GridFooter::GridFooter(const ColumnModel &columns, const ColumnGeometry &geometry, TextPainter &texts,
    std::function<QString(int row, int column)> text, QWidget *parent)
    : QWidget(parent)
    , m_columns(columns)
    , m_geometry(geometry)
    , m_texts(texts)
    , m_text(std::move(text))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void GridFooter::setColor(const QColor &color)
{
    m_color = color;
    update();
}

void GridFooter::paintEvent(QPaintEvent *event)
{
    const GridColors colors(palette());
    const QColor background = m_color.isValid() ? colors.background(m_color) : colors.title;
    const QColor edge = readableOn(background);
    const QColor line = blend(background, edge, 0.15);
    const QColor text = m_textColor.isValid() ? colors.textColor(m_textColor) : edge;
    QPainter painter(this);
    painter.fillRect(event->rect(), background);
    for (const ColumnGeometry::Span &span : m_geometry.spans(event->rect())) {
        painter.setClipRect(span.clip);
        for (int column = span.first; column <= span.last; ++column) {
            if (!m_columns.at(column).visible)
                continue;
            painter.fillRect(m_geometry.right(column) - 1, 0, 1, height(), line);
            painter.setPen(isEnabled() ? text : blend(text, background, 0.5));
            for (int row = 0; row < m_rows; ++row)
                paintCell(painter, row, column);
        }
    }
    painter.setClipping(false);
    painter.fillRect(0, 0, width(), 1, blend(background, edge, 0.3));
    for (int row = 1; row < m_rows; ++row)
        painter.fillRect(0, row * m_rowHeight, width(), 1, line);
    painter.fillRect(m_geometry.indicatorWidth() - 1, 0, 1, height(), line);
    if (m_geometry.hasFrozen())
        painter.fillRect(m_geometry.frozenRight() - 1, 0, 1, height(), colors.frozenLine);
}

void GridFooter::paintCell(QPainter &painter, int row, int column) const
{
    if (row >= m_columns.at(column).footers.size())
        return;
    const int left = m_geometry.left(column) + textMargin - 1;
    const QRect box(left, row * m_rowHeight + 1, m_geometry.right(column) - textMargin - left, m_rowHeight - 1);
    m_texts.draw(painter, box, m_columns.footerAlignment(row, column), font(), m_text(row, column));
}

} // namespace platform
