#pragma once

#include <QGroupBox>
#include <QList>
#include <QString>

#include <variant>

class QFrame;
class QLabel;
class TDBDateTimeEditEh;
class TWorkPanel;

/// One condition: its label and its control. A control that carries its own caption (a check box) has none.
struct ConditionRow {
    QString label;
    QWidget *control;
};

/// A block of conditions, filled row by row over `columns` label-and-control pairs; in a titled box, or without one.
struct ConditionBox {
    QGroupBox *box; ///< null: none
    QString caption;
    int columns;
    QList<ConditionRow> rows;
};

using ConditionItem = std::variant<ConditionRow, ConditionBox>;
/// What stands side by side on a condition panel.
using ConditionLine = QList<ConditionItem>;

ConditionRow row(QStringView label, QWidget *control);
ConditionRow row(QWidget *control);
/// A box of conditions; `columns` of them stand side by side.
ConditionBox box(QGroupBox *groupBox, QStringView caption, int columns, const QList<ConditionRow> &rows);
/// The same without a box.
ConditionBox block(int columns, const QList<ConditionRow> &rows);
/// The box of a date-time range: "开始" over "结束".
ConditionBox range(QGroupBox *groupBox, QStringView caption, TDBDateTimeEditEh *start, TDBDateTimeEditEh *end);

/// The label that arrange() has put before a control.
QLabel *labelOf(const QWidget *control);
/// Shows or hides a condition together with its label.
void setConditionVisible(QWidget *control, bool visible);

/// Lays a condition panel out, from the top line by line, with the collapse button below; the tab order follows.
void arrange(QFrame *panel, TWorkPanel *workPanel, const QList<ConditionLine> &lines);
