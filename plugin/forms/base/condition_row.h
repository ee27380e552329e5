#pragma once

#include <QDate>
#include <QGroupBox>
#include <QList>
#include <QString>

#include <functional>
#include <variant>

class TDataSet;
class TDataSource;
class TDBComboBoxEh;
class TDBDateTimeEditEh;
class TDBLookupComboboxEh;
namespace platform {
struct LookupColumn;
}

namespace plugin {

/// One condition of a screen: its label and its control. A control that carries its own caption (a check box) has no label.
struct ConditionRow {
    QString label;
    QWidget *control;
    const char *labelName = nullptr; ///< by which the screen owns the label; null where nobody asks for it
    QList<std::function<void()>> onCreate {}; ///< what gives the control its list and its first value, run when the screen is created
};

/// A condition that is looked up in a dataset. The lists are those of the host unless a source is given.
struct LookupRow : ConditionRow {
    /// The rows of `source`: the field whose value the text becomes, the code by which it can also be typed, the columns of the list.
    LookupRow &from(TDataSource *source, const QString &keyField, const QString &codeField, const QList<platform::LookupColumn> &columns);
    LookupRow &sites(TDataSource *source);
    LookupRow &employees();
    LookupRow &scanTypes();
    /// Starts with the login site.
    LookupRow &loginSite();
    /// LookupComboTextExit when the person leaves the control, or when Enter is pressed in it.
    LookupRow &completes();
    LookupRow &completesOnEnter();
    /// The login site comes back when the person leaves the control without a text.
    LookupRow &returnsToLoginSite();

private:
    TDBLookupComboboxEh *lookup() const;
};

/// A condition that is chosen from a drop-down list, whose first entry is chosen at first; "全部" stands before the values of the host.
struct ListRow : ConditionRow {
    ListRow &goodsTypes();
    ListRow &fastTypes();
    ListRow &shifts();
    ListRow &areas();
    /// Without "全部".
    ListRow &scanTypes();
    /// A list of the screen's own, one entry a line.
    ListRow &items(const QString &lines);

private:
    ListRow &values(const QString &first, const QString &hostDataSet, const QString &field);
};

ConditionRow row(QStringView label, QWidget *control);
ConditionRow row(QWidget *control);
LookupRow row(QStringView label, TDBLookupComboboxEh *control, const char *labelName = nullptr);
ListRow row(QStringView label, TDBComboBoxEh *control, const char *labelName = nullptr);

/// A block of conditions, filled row by row over `columns` label-and-control pairs; in a titled box, or without one.
struct ConditionBox {
    QGroupBox *box; ///< null: none
    QString caption;
    int columns;
    QList<ConditionRow> rows;
};

/// The box of a date-time range: "开始" over "结束".
struct RangeBox : ConditionBox {
    RangeBox &daysOnly();
    /// Starts with the whole of the day or month.
    RangeBox &yesterday();
    RangeBox &today();
    RangeBox &lastMonth();

private:
    using Days = std::pair<QDate, QDate>;
    RangeBox &startsWith(Days (*days)(const QDate &today));
};

ConditionBox box(QGroupBox *groupBox, QStringView caption, int columns, const QList<ConditionRow> &rows);
ConditionBox block(int columns, const QList<ConditionRow> &rows);
RangeBox range(QGroupBox *groupBox, QStringView caption, TDBDateTimeEditEh *start, TDBDateTimeEditEh *end);

using ConditionItem = std::variant<ConditionRow, ConditionBox>;
/// What stands side by side on a condition panel.
using ConditionLine = QList<ConditionItem>;

/// Fills a list with "全部" and the values of a field, and chooses the former.
void fillList(TDBComboBoxEh *list, TDataSet *dataSet, const QString &field);

} // namespace plugin
