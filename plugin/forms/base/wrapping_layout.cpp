#include "plugin/forms/base/wrapping_layout.h"

#include <QWidget>

#include <algorithm>

namespace plugin {

WrappingLayout::WrappingLayout(QWidget *parent)
    : QLayout(parent)
{
}

WrappingLayout::~WrappingLayout() { qDeleteAll(m_items); }

void WrappingLayout::addChild(QWidget *widget)
{
    addChildWidget(widget);
    addItem(new QWidgetItem(widget));
}

void WrappingLayout::addChild(QLayout *layout)
{
    addChildLayout(layout);
    addItem(layout);
}

void WrappingLayout::setGaps(int betweenItems, int betweenLines)
{
    m_itemGap = betweenItems;
    m_lineGap = betweenLines;
}

QLayoutItem *WrappingLayout::takeAt(int index)
{
    if (index < 0 || index >= m_items.size())
        return nullptr;
    for (int &start : m_lineStarts)
        start -= start > index ? 1 : 0;
    return m_items.takeAt(index);
}

/// One past the last item that has room beside `first`.
int WrappingLayout::rowEnd(int first, int width) const
{
    int end = first;
    int used = 0;
    while (end < m_items.size() && (end == first || !m_lineStarts.contains(end))) {
        used += m_items[end]->minimumSize().width() + (end > first ? m_itemGap : 0);
        if (end > first && used > width)
            break;
        ++end;
    }
    return end;
}

/// Returns the height of the row.
int WrappingLayout::arrangeRow(const QRect &row, int first, int end, Act act) const
{
    int height = 0;
    int spare = row.width() - m_itemGap * (end - first - 1);
    for (int index = first; index < end; ++index) {
        height = std::max(height, m_items[index]->sizeHint().height());
        spare -= m_items[index]->minimumSize().width();
    }
    int x = row.left();
    for (int index = first; act == Act::Place && index < end; ++index) {
        const int least = m_items[index]->minimumSize().width();
        const int more = std::clamp(spare, 0, std::max(0, m_items[index]->sizeHint().width() - least));
        spare -= more;
        m_items[index]->setGeometry(QRect(x, row.top(), least + more, height));
        x += least + more + m_itemGap;
    }
    return height;
}

int WrappingLayout::arrange(const QRect &rect, Act act) const
{
    const QMargins margins = contentsMargins();
    QRect row = rect.marginsRemoved(margins);
    for (int first = 0; first < m_items.size();) {
        const int end = rowEnd(first, row.width());
        row.setTop(row.top() + arrangeRow(row, first, end, act) + m_lineGap);
        first = end;
    }
    return row.top() - (m_items.isEmpty() ? 0 : m_lineGap) + margins.bottom() - rect.top();
}

int WrappingLayout::heightForWidth(int width) const { return arrange(QRect(0, 0, width, 0), Act::Measure); }

QSize WrappingLayout::sizeHint() const
{
    int widest = 0;
    for (int first = 0; first < m_items.size();) {
        const int end = rowEnd(first, QWIDGETSIZE_MAX);
        int width = m_itemGap * (end - first - 1);
        for (int index = first; index < end; ++index)
            width += std::max(m_items[index]->sizeHint().width(), m_items[index]->minimumSize().width());
        widest = std::max(widest, width);
        first = end;
    }
    widest += contentsMargins().left() + contentsMargins().right();
    return { widest, heightForWidth(widest) };
}

QSize WrappingLayout::minimumSize() const
{
    int widest = 0;
    int lowest = 0;
    for (const QLayoutItem *item : m_items) {
        widest = std::max(widest, item->minimumSize().width());
        lowest = std::max(lowest, item->minimumSize().height());
    }
    const QMargins margins = contentsMargins();
    return { widest + margins.left() + margins.right(), lowest + margins.top() + margins.bottom() };
}

void WrappingLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    arrange(rect, Act::Place);
}

} // namespace plugin
