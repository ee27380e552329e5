#pragma once

#include <QLayout>

namespace plugin {

/// Lines of items side by side, each as wide as it wants to be where there is room. A line that is too narrow makes its items
/// smaller first, and then goes on below.
class WrappingLayout : public QLayout {
public:
    explicit WrappingLayout(QWidget *parent);
    ~WrappingLayout() override;

    /// The next item begins a line.
    void beginLine() { m_lineStarts.append(int(m_items.size())); }
    /// Both take ownership, as layouts do.
    void addChild(QWidget *widget);
    void addChild(QLayout *layout);
    void setGaps(int betweenItems, int betweenLines);

    void addItem(QLayoutItem *item) override { m_items.append(item); }
    int count() const override { return int(m_items.size()); }
    QLayoutItem *itemAt(int index) const override { return m_items.value(index); }
    QLayoutItem *takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect &rect) override;

private:
    enum class Act { Measure, Place };
    int arrange(const QRect &rect, Act act) const;
    int arrangeRow(const QRect &row, int first, int end, Act act) const;
    int rowEnd(int first, int width) const;

    QList<QLayoutItem *> m_items;
    QList<int> m_lineStarts;
    int m_itemGap = 0;
    int m_lineGap = 0;
};

} // namespace plugin
