#include "plugin/forms/base/condition_layout.h"

#include "platform/editors/editors.h"
#include "plugin/forms/base/frame_Panel.h"

#include <QAbstractButton>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>

namespace {

constexpr int fieldWidth = 150;
constexpr int widestField = 260;
constexpr int timeFieldWidth = 168;
constexpr int gap = 6;

void setFieldWidth(QWidget *control)
{
    if (qobject_cast<TDBDateTimeEditEh *>(control)) {
        control->setFixedWidth(timeFieldWidth);
    } else if (!qobject_cast<QAbstractButton *>(control)) {
        control->setMinimumWidth(fieldWidth);
        control->setMaximumWidth(widestField);
    }
}

/// Places label and control of each row; `columns` pairs side by side.
void fill(QGridLayout *grid, const QList<ConditionRow> &rows, int columns, QWidget *&previous)
{
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const ConditionRow &row = rows[index];
        const int line = int(index) / columns;
        const int column = int(index) % columns * 2;
        if (!row.label.isEmpty()) {
            auto *label = new QLabel(row.label);
            label->setBuddy(row.control);
            grid->addWidget(label, line, column, Qt::AlignRight | Qt::AlignVCenter);
        }
        setFieldWidth(row.control);
        grid->addWidget(row.control, line, column + 1);
        grid->setColumnStretch(column + 1, 1);
        if (previous)
            QWidget::setTabOrder(previous, row.control);
        previous = row.control;
    }
}

QGridLayout *conditionGrid()
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(gap);
    grid->setVerticalSpacing(gap);
    return grid;
}

} // namespace

ConditionRow row(QStringView label, QWidget *control) { return { label.toString(), control }; }

ConditionRow row(QWidget *control) { return { {}, control }; }

ConditionBox box(QGroupBox *groupBox, QStringView caption, int columns, const QList<ConditionRow> &rows)
{
    return { groupBox, caption.toString(), columns, rows };
}

ConditionBox block(int columns, const QList<ConditionRow> &rows) { return { nullptr, {}, columns, rows }; }

ConditionBox range(QGroupBox *groupBox, QStringView caption, TDBDateTimeEditEh *start, TDBDateTimeEditEh *end)
{
    return box(groupBox, caption, 1, { row(u"开始", start), row(u"结束", end) });
}

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

void arrange(QFrame *panel, TWorkPanel *workPanel, const QList<ConditionLine> &lines)
{
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(gap, gap, gap, 0);
    layout->setSpacing(gap);
    QWidget *previous = nullptr;
    for (const ConditionLine &items : lines) {
        auto *line = new QHBoxLayout;
        line->setSpacing(gap * 2);
        for (const ConditionItem &item : items) {
            QGridLayout *grid = conditionGrid();
            const auto *boxed = std::get_if<ConditionBox>(&item);
            if (boxed)
                fill(grid, boxed->rows, boxed->columns, previous);
            else
                fill(grid, { std::get<ConditionRow>(item) }, 1, previous);
            if (boxed && boxed->box) {
                boxed->box->setTitle(boxed->caption);
                boxed->box->setLayout(grid);
                line->addWidget(boxed->box);
            } else {
                line->addLayout(grid);
            }
        }
        line->addStretch(1);
        layout->addLayout(line);
    }
    layout->addWidget(workPanel, 0, Qt::AlignHCenter);
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}
