#include "platform/grid/grid_header.h"

#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/text_painter.h"
#include "platform/toolkit/plain_text.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace platform {

namespace {

constexpr int borderReach = 4; ///< pixels on either side of a border at which it can be dragged
constexpr int textMargin = 3;
constexpr int markSize = 7;
constexpr int leastWidth = 16;

QString upperCaption(const QString &caption) { return caption.contains(u'|') ? caption.section(u'|', 0, 0) : QString(); }

QString lowerCaption(const QString &caption) { return caption.contains(u'|') ? caption.section(u'|', 1) : caption; }

} // namespace

GridHeader::GridHeader(const ColumnModel &columns, const ColumnGeometry &geometry, TextPainter &texts, QWidget *parent)
    : QWidget(parent)
    , m_columns(columns)
    , m_geometry(geometry)
    , m_texts(texts)
{
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

int GridHeader::upperHeight() const { return levels() == 2 ? fontMetrics().height() + 8 : 0; }

int GridHeader::lowerHeight() const
{
    for (int column = 0; column < m_columns.count(); ++column) {
        const Column &shown = m_columns.at(column);
        if (shown.visible && isWrapped(lowerCaption(shown.caption), m_geometry.toScreen(shown.width) - 2 * textMargin))
            return 2 * fontMetrics().height() + 8;
    }
    return fontMetrics().height() + 8;
}

bool GridHeader::isWrapped(const QString &caption, int room) const { return caption.size() > 1 && m_texts.width(font(), caption) > room; }

int GridHeader::levels() const
{
    for (int column = 0; column < m_columns.count(); ++column) {
        if (m_columns.at(column).visible && m_columns.at(column).caption.contains(u'|'))
            return 2;
    }
    return 1;
}

int GridHeader::preferredHeight() const { return upperHeight() + lowerHeight(); }

int GridHeader::titleWidth(int column) const
{
    const int mark = m_columns.at(column).sortMark != SortMark::None ? 2 * (markSize + textMargin) : 0;
    return m_texts.width(font(), lowerCaption(m_columns.at(column).caption)) + mark + 2 * textMargin + 1;
}

GridHeader::Section GridHeader::columnSection(int column) const
{
    const bool below = !upperCaption(m_columns.at(column).caption).isEmpty();
    const int top = below ? upperHeight() : 0;
    return { column, column, false,
        QRect(m_geometry.left(column), top, m_geometry.right(column) - m_geometry.left(column), height() - top) };
}

GridHeader::Section GridHeader::upperSection(int column) const
{
    const QString caption = upperCaption(m_columns.at(column).caption);
    const auto end = [&](int step) {
        int last = column;
        for (int next = m_columns.visibleFrom(last + step, step); next >= 0; next = m_columns.visibleFrom(last + step, step)) {
            if (upperCaption(m_columns.at(next).caption) != caption || m_geometry.isFrozen(next) != m_geometry.isFrozen(column))
                break;
            last = next;
        }
        return last;
    };
    const int first = end(-1);
    const int last = end(1);
    return { first, last, true, QRect(m_geometry.left(first), 0, m_geometry.right(last) - m_geometry.left(first), upperHeight()) };
}

GridHeader::Section GridHeader::sectionAt(QPoint position) const
{
    const int column = m_geometry.columnAt(position.x());
    if (column < 0)
        return {};
    const Section section = columnSection(column);
    return position.y() < section.box.top() ? upperSection(column) : section;
}

int GridHeader::borderAt(QPoint position) const
{
    const auto reaches = [&](const Section &section) {
        const int right = section.box.left() + section.box.width();
        const bool hidden = !m_geometry.isFrozen(section.last) && right < m_geometry.frozenRight();
        return section.first >= 0 && !hidden && std::abs(position.x() - right) <= borderReach;
    };
    const Section here = sectionAt(position);
    if (reaches(here))
        return here.last;
    const Section before = sectionAt(position - QPoint(borderReach, 0));
    return reaches(before) ? before.last : -1;
}

int GridHeader::dropIndex(int x) const
{
    const int column = m_geometry.columnAt(x);
    if (column < 0)
        return x < m_geometry.frozenRight() ? 0 : m_columns.count();
    return x < (m_geometry.left(column) + m_geometry.right(column)) / 2 ? column : column + 1;
}

void GridHeader::setHover(int column)
{
    if (m_hover == column)
        return;
    m_hover = column;
    update();
}

void GridHeader::setMarked(int column)
{
    if (m_marked == column)
        return;
    m_marked = column;
    update();
}

void GridHeader::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = event->pos();
    m_column = borderAt(m_pressed);
    if (m_column >= 0) {
        m_drag = Drag::Resize;
        m_pressedWidth = m_geometry.toScreen(m_columns.at(m_column).width);
        return;
    }
    const Section section = sectionAt(m_pressed);
    m_column = section.isColumn() ? section.first : -1;
    m_drag = m_column >= 0 ? Drag::Press : m_pressed.x() < m_geometry.indicatorWidth() ? Drag::Corner : Drag::None;
    update();
}

void GridHeader::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton)) {
        setCursor(borderAt(event->pos()) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
        const Section section = sectionAt(event->pos());
        return setHover(section.isColumn() ? section.first : -1);
    }
    const int distance = event->pos().x() - m_pressed.x();
    if (m_drag == Drag::Resize)
        Q_EMIT widthDragged(m_column, m_geometry.toDesign(std::max(leastWidth, m_pressedWidth + distance)));
    if (m_drag == Drag::Press && std::abs(distance) >= QApplication::startDragDistance())
        m_drag = Drag::Move;
    if (m_drag == Drag::Move) {
        m_dropIndex = dropIndex(event->pos().x());
        update();
    }
}

void GridHeader::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Drag drag = std::exchange(m_drag, Drag::None);
    const int column = std::exchange(m_column, -1);
    const int drop = std::exchange(m_dropIndex, -1);
    update();
    if (drag == Drag::Corner && event->pos().x() < m_geometry.indicatorWidth())
        Q_EMIT cornerClicked();
    if (drag == Drag::Press && rect().contains(event->pos()) && sectionAt(event->pos()).first == column)
        Q_EMIT clicked(column, event->modifiers());
    const int target = drop > column ? drop - 1 : drop;
    if (drag == Drag::Move && target >= 0 && target != column)
        Q_EMIT moveRequested(column, target);
}

void GridHeader::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int border = event->button() == Qt::LeftButton ? borderAt(event->pos()) : -1;
    if (border >= 0)
        Q_EMIT fitRequested(border);
    else
        mousePressEvent(event);
}

void GridHeader::leaveEvent(QEvent *) { setHover(-1); }

void GridHeader::contextMenuEvent(QContextMenuEvent *event)
{
    const Section section = sectionAt(event->pos());
    Q_EMIT menuRequested(section.isColumn() ? section.first : -1, event->globalPos());
}

bool GridHeader::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const Section section = sectionAt(help->pos());
    const bool cut = section.isColumn() && titleWidth(section.first) > section.box.width();
    QToolTip::showText(help->globalPos(), cut ? plainTip(lowerCaption(m_columns.at(section.first).caption)) : QString(), this);
    return true;
}

void GridHeader::paintEvent(QPaintEvent *event)
{
    const GridColors colors(palette());
    QPainter painter(this);
    painter.fillRect(event->rect(), colors.title);
    for (const ColumnGeometry::Span &span : m_geometry.spans(event->rect())) {
        painter.setClipRect(span.clip);
        int upperEnd = -1;
        for (int column = span.first; column <= span.last; ++column) {
            if (!m_columns.at(column).visible)
                continue;
            paintSection(painter, columnSection(column), span.clip, colors);
            if (column <= upperEnd || upperCaption(m_columns.at(column).caption).isEmpty())
                continue;
            const Section upper = upperSection(column);
            paintSection(painter, upper, span.clip, colors);
            upperEnd = upper.last;
        }
    }
    painter.setClipping(false);
    painter.fillRect(0, height() - 1, width(), 1, colors.line);
    painter.fillRect(m_geometry.indicatorWidth() - 1, 0, 1, height(), colors.line);
    if (m_geometry.hasFrozen())
        painter.fillRect(m_geometry.frozenRight() - 1, 0, 1, height(), colors.frozenLine);
    if (m_dropIndex >= 0 && m_columns.count() > 0) {
        const bool atEnd = m_dropIndex == m_columns.count();
        const int x = atEnd ? m_geometry.right(m_dropIndex - 1) : m_geometry.left(m_dropIndex);
        painter.fillRect(x - 2, 0, 3, height(), colors.accent);
    }
}

void GridHeader::paintSection(QPainter &painter, const Section &section, const QRect &clip, const GridColors &colors) const
{
    const bool button = section.isColumn() && m_columns.at(section.first).titleButton;
    const bool pressed = section.isColumn() && section.first == m_column && m_drag != Drag::Resize;
    if (pressed)
        painter.fillRect(section.box, colors.titlePressed);
    else if (button && section.first == m_hover && isEnabled())
        painter.fillRect(section.box, colors.titleHover);
    else if (section.isColumn() && section.first == m_marked)
        painter.fillRect(section.box, colors.found);
    painter.fillRect(section.box.right(), section.box.top(), 1, section.box.height(), colors.line);
    painter.fillRect(section.box.left(), section.box.bottom(), section.box.width(), 1, colors.line);

    const int markWidth = section.isColumn() ? paintMark(painter, section, colors) : 0;
    QRect textBox = section.box.adjusted(0, 0, -markWidth, 0);
    if (section.upper)
        textBox &= clip; // the upper title stays readable while its columns scroll
    textBox.adjust(textMargin - 1, 0, -textMargin, 0);
    const QString &caption = m_columns.at(section.first).caption;
    painter.setPen(colors.titleText);
    paintCaption(painter, textBox, section.upper ? upperCaption(caption) : lowerCaption(caption));
}

/// In one line, or in two when it is too long and there is room for them.
void GridHeader::paintCaption(QPainter &painter, const QRect &box, const QString &caption) const
{
    const int lineHeight = fontMetrics().height();
    if (!isWrapped(caption, box.width()) || box.height() < 2 * lineHeight)
        return m_texts.draw(painter, box, Qt::AlignHCenter, font(), caption);
    qsizetype split = caption.size() - 1;
    while (split > 1 && m_texts.width(font(), caption.left(split)) > box.width())
        --split;
    const QRect first(box.left(), box.center().y() - lineHeight + 1, box.width(), lineHeight);
    m_texts.draw(painter, first, Qt::AlignHCenter, font(), caption.left(split));
    m_texts.draw(painter, first.translated(0, lineHeight), Qt::AlignHCenter, font(), caption.mid(split));
}

int GridHeader::paintMark(QPainter &painter, const Section &section, const GridColors &colors) const
{
    const Column &column = m_columns.at(section.first);
    if (column.sortMark == SortMark::None)
        return 0;
    const bool several = m_columns.sortKeys().size() > 1;
    QFont small = font();
    if (small.pixelSize() > 0)
        small.setPixelSize(std::max(8, small.pixelSize() * 3 / 4));
    else
        small.setPointSizeF(small.pointSizeF() * 0.75);
    const QString number = several ? QString::number(column.sortKey) : QString();
    const int numberWidth = m_texts.width(small, number);
    const qreal right = section.box.right() - textMargin - numberWidth - (several ? 1 : 0);
    const qreal middle = section.box.center().y() + 0.5;
    const qreal half = markSize / 2.0;
    const qreal rise = column.sortMark == SortMark::Ascending ? 2 : -2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.mark);
    painter.drawPolygon(QPolygonF { { right - markSize, middle + rise }, { right, middle + rise }, { right - half, middle - rise } });
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(colors.mark);
    m_texts.draw(painter, QRect(int(right) + 1, section.box.top(), numberWidth, section.box.height()), Qt::AlignLeft, small, number);
    return markSize + numberWidth + textMargin;
}

} // namespace platform
