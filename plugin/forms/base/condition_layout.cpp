#include "plugin/forms/base/condition_layout.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/plain_text.h"
#include "plugin/forms/base/frame_Panel.h"
#include "plugin/forms/base/wrapping_layout.h"

#include <QAbstractButton>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>

#include <algorithm>

using namespace platform;

namespace plugin {

namespace {

constexpr int fieldWidth = 150;
constexpr int leastFieldWidth = 112; ///< where the window is narrow, or the texts are large
constexpr int widestField = 260;
constexpr int timeFieldWidth = 168;
constexpr int gap = 6;
constexpr int leastResultHeight = 200; ///< some rows with titles and footers
constexpr int leastConditionHeight = 72;
constexpr qreal designedPoints = 9; ///< of the font that the widths are measured in

qreal fontScale(const QWidget &control) { return std::max(1.0, control.font().pointSizeF() / designedPoints); }

/// A field that wants to have its usual width and can do with less.
class FieldItem : public QWidgetItem {
public:
    using QWidgetItem::QWidgetItem;

    QSize sizeHint() const override
    {
        const QWidget *field = const_cast<FieldItem *>(this)->widget();
        const bool isButton = qobject_cast<const QAbstractButton *>(field);
        const int wanted = isButton ? 0 : std::min(int(fieldWidth * fontScale(*field)), field->maximumWidth());
        return QWidgetItem::sizeHint().expandedTo({ wanted, 0 });
    }
};

void setFieldWidth(QWidget *control)
{
    if (control->minimumWidth() == control->maximumWidth())
        return;
    const qreal scale = fontScale(*control);
    if (qobject_cast<TDBDateTimeEditEh *>(control)) {
        control->setFixedWidth(int(timeFieldWidth * scale));
    } else if (!qobject_cast<QAbstractButton *>(control)) {
        control->setMinimumWidth(leastFieldWidth);
        control->setMaximumWidth(int(widestField * scale));
    }
}

QLabel *makeLabel(TComponentOwner *owner, const ConditionRow &row)
{
    auto *label = plainLabel(row.label);
    label->setBuddy(row.control);
    return row.labelName ? owner->own(label, row.labelName) : label;
}

/// A screen reader finds the label of a control, but not that of the line inside an editable list.
void nameInnerLine(const ConditionRow &row)
{
    if (const auto *list = qobject_cast<const QComboBox *>(row.control); list && list->lineEdit())
        list->lineEdit()->setAccessibleName(row.label);
}

/// Places label and control of each row; `columns` pairs side by side.
void fill(QGridLayout *grid, TComponentOwner *owner, const QList<ConditionRow> &rows, int columns)
{
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const ConditionRow &row = rows[index];
        const int line = int(index) / columns;
        const int column = int(index) % columns * 2;
        if (!row.label.isEmpty())
            grid->addWidget(makeLabel(owner, row), line, column, Qt::AlignRight | Qt::AlignVCenter);
        nameInnerLine(row);
        setFieldWidth(row.control);
        grid->addItem(new FieldItem(row.control), line, column + 1);
        grid->setColumnStretch(column + 1, 1);
    }
}

/// Two times one below the other are the ends of one range.
void pairTimes(const QList<ConditionRow> &rows)
{
    for (qsizetype index = 1; index < rows.size(); ++index) {
        auto *start = qobject_cast<TDBDateTimeEditEh *>(rows[index - 1].control);
        auto *end = qobject_cast<TDBDateTimeEditEh *>(rows[index].control);
        if (start && end)
            TDBDateTimeEditEh::pair(start, end);
    }
}

/// As high as the conditions need, while the result below keeps some room; then they scroll.
class ConditionArea : public QScrollArea {
public:
    ConditionArea(QWidget *conditions, QWidget *screen)
        : m_screen(screen)
    {
        setFrameShape(NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
        setWidget(conditions);
        conditions->setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
        setMinimumHeight(1); // a collapsed panel covers them
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        screen->installEventFilter(this);
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return std::min(widget()->heightForWidth(width), mostHeight()); }
    QSize sizeHint() const override { return { widget()->sizeHint().width(), std::min(widget()->sizeHint().height(), mostHeight()) }; }
    QSize minimumSizeHint() const override { return { widget()->minimumSizeHint().width(), 1 }; }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool roomChanged = watched == m_screen && event->type() == QEvent::Resize;
        const bool needChanged = watched == widget() && event->type() == QEvent::LayoutRequest;
        if (roomChanged || needChanged)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }

private:
    int mostHeight() const { return std::max(m_screen->height() - int(leastResultHeight * fontScale(*this)), leastConditionHeight); }

    const QWidget *m_screen;
};

QGridLayout *conditionGrid()
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(gap);
    grid->setVerticalSpacing(gap);
    return grid;
}

void place(const ConditionItem &item, WrappingLayout *layout, TComponentOwner *owner)
{
    QGridLayout *grid = conditionGrid();
    const auto *boxed = std::get_if<ConditionBox>(&item);
    if (boxed) {
        fill(grid, owner, boxed->rows, boxed->columns);
        pairTimes(boxed->rows);
    } else {
        fill(grid, owner, { std::get<ConditionRow>(item) }, 1);
    }
    if (boxed && boxed->box) {
        boxed->box->setTitle(boxed->caption);
        boxed->box->setLayout(grid);
        layout->addChild(boxed->box);
    } else {
        layout->addChild(grid);
    }
}

} // namespace

QLabel *labelOf(const QWidget *control)
{
    for (QLabel *label : control->parentWidget()->findChildren<QLabel *>()) {
        if (label->buddy() == control)
            return label;
    }
    return nullptr;
}

void setConditionVisible(QWidget *control, bool visible)
{
    control->setVisible(visible);
    labelOf(control)->setVisible(visible);
}

void forEachRow(const QList<ConditionLine> &lines, const std::function<void(const ConditionRow &)> &visit)
{
    for (const ConditionLine &items : lines) {
        for (const ConditionItem &item : items) {
            if (const auto *single = std::get_if<ConditionRow>(&item))
                visit(*single);
            else
                std::for_each(std::get<ConditionBox>(item).rows.begin(), std::get<ConditionBox>(item).rows.end(), visit);
        }
    }
}

void arrange(TComponentOwner *owner, QFrame *panel, TWorkPanel *workPanel, const QList<ConditionLine> &lines)
{
    auto *conditions = new QWidget;
    auto *layout = new WrappingLayout(conditions);
    layout->setContentsMargins(gap, gap, gap, gap + workPanel->height());
    layout->setGaps(gap * 2, gap);
    for (const ConditionLine &items : lines) {
        layout->beginLine();
        for (const ConditionItem &item : items)
            place(item, layout, owner);
    }
    auto *layers = new QGridLayout(panel);
    layers->setContentsMargins(0, 0, 0, 0);
    layers->addWidget(new ConditionArea(conditions, panel->parentWidget()), 0, 0);
    layers->addWidget(workPanel, 0, 0, Qt::AlignBottom | Qt::AlignHCenter);
    workPanel->raise();
    // As high as the lines need at the panel's width.
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    QWidget *previous = nullptr;
    forEachRow(lines, [&previous](const ConditionRow &row) {
        if (previous)
            QWidget::setTabOrder(previous, row.control);
        previous = row.control;
    });
}

} // namespace plugin
