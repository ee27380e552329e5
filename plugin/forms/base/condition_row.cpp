#include "plugin/forms/base/condition_row.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/conditions.h"

using namespace platform;
using namespace plugin;

namespace plugin {

namespace {

void setItems(TDBComboBoxEh *list, const QString &lines)
{
    list->setItemsText(lines);
    list->setKeyItemsText(lines);
    list->setItemIndex(0);
}

QString valuesOf(TDataSet *dataSet, const QString &field)
{
    QString values;
    DataSetFieldToText(dataSet, field, QStringLiteral("\r"), values);
    return values;
}

} // namespace

void fillList(TDBComboBoxEh *list, TDataSet *dataSet, const QString &field) { setItems(list, allItems + u'\r' + valuesOf(dataSet, field)); }

TDBLookupComboboxEh *LookupRow::lookup() const { return static_cast<TDBLookupComboboxEh *>(control); }

LookupRow &LookupRow::from(TDataSource *source, const QString &keyField, const QString &codeField, const QList<LookupColumn> &columns)
{
    lookup()->setFields(keyField, keyField, codeField);
    lookup()->setDropDownColumns(columns);
    lookup()->setListSource(source);
    return *this;
}

LookupRow &LookupRow::sites(TDataSource *source)
{
    return from(source, QStringLiteral("SITE_NAME"), QStringLiteral("SITE_CODE"),
        { { QStringLiteral("SITE_CODE"), QStringLiteral("网点编号"), 80 }, { QStringLiteral("SITE_NAME"), QStringLiteral("网点名称"), 120 },
            { QStringLiteral("SUPERIOR_SITE"), QStringLiteral("所属网点"), 120 } });
}

LookupRow &LookupRow::employees()
{
    return from(dm_GlobalData->ds_employee, QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("EMPLOYEE_CODE"),
        { { QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("员工编号"), 60 },
            { QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("员工姓名"), 60 },
            { QStringLiteral("OWNER_SITE"), QStringLiteral("所属网点"), 120 },
            { QStringLiteral("DEPT_NAME"), QStringLiteral("所属部门"), 60 } });
}

LookupRow &LookupRow::scanTypes()
{
    return from(dm_GlobalData->ds_scanType, QStringLiteral("TYPE_NAME"), QStringLiteral("TYPE_CODE"),
        { { QStringLiteral("TYPE_CODE"), QStringLiteral("类型编号"), 80 },
            { QStringLiteral("TYPE_NAME"), QStringLiteral("类型名称"), 120 } });
}

LookupRow &LookupRow::loginSite()
{
    onCreate.append([combo = lookup()] { combo->setText(GlobalValueAddr(QStringLiteral("site"))); });
    return *this;
}

LookupRow &LookupRow::completes()
{
    handle(lookup(), &TDBLookupComboboxEh::exited, lookup(), [combo = lookup()] { LookupComboTextExit(combo); });
    return *this;
}

LookupRow &LookupRow::completesOnEnter()
{
    handle(lookup(), &TDBLookupComboboxEh::keyPressed, lookup(), [combo = lookup()](int key) {
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            LookupComboTextExit(combo);
    });
    return *this;
}

LookupRow &LookupRow::returnsToLoginSite()
{
    handle(lookup(), &TDBLookupComboboxEh::exited, lookup(), [combo = lookup()] {
        if (combo->text().trimmed().isEmpty())
            combo->setText(GlobalValueAddr(QStringLiteral("site")));
    });
    return *this;
}

ListRow &ListRow::goodsTypes() { return values(allItems + u'\r', QStringLiteral("GoodsType"), QStringLiteral("GOODS_NAME")); }

ListRow &ListRow::fastTypes() { return values(allItems + u'\r', QStringLiteral("FastType"), QStringLiteral("TYPE_NAME")); }

ListRow &ListRow::shifts() { return values(allItems + u'\r', QStringLiteral("Class"), QStringLiteral("CLASS_NAME")); }

ListRow &ListRow::areas() { return values(allItems + u'\r', QStringLiteral("area"), QStringLiteral("AREA_NAME")); }

ListRow &ListRow::scanTypes() { return values({}, QStringLiteral("scanType"), QStringLiteral("TYPE_NAME")); }

ListRow &ListRow::values(const QString &first, const QString &hostDataSet, const QString &field)
{
    onCreate.append([list = static_cast<TDBComboBoxEh *>(control), first, hostDataSet, field] {
        setItems(list, first + valuesOf(GlobalCdsAddr(hostDataSet), field));
    });
    return *this;
}

ListRow &ListRow::items(const QString &lines)
{
    setItems(static_cast<TDBComboBoxEh *>(control), lines);
    return *this;
}

RangeBox &RangeBox::daysOnly()
{
    for (const ConditionRow &row : rows)
        static_cast<TDBDateTimeEditEh *>(row.control)->setDateOnly(true);
    return *this;
}

RangeBox &RangeBox::yesterday()
{
    return startsWith([](const QDate &today) { return Days(today.addDays(-1), today.addDays(-1)); });
}

RangeBox &RangeBox::today()
{
    return startsWith([](const QDate &today) { return Days(today, today); });
}

RangeBox &RangeBox::lastMonth()
{
    return startsWith([](const QDate &today) {
        const QDate thisMonth(today.year(), today.month(), 1);
        return Days(thisMonth.addMonths(-1), thisMonth.addDays(-1));
    });
}

RangeBox &RangeBox::startsWith(Days (*days)(const QDate &today))
{
    rows.first().onCreate.append([days, start = rows[0].control, end = rows[1].control] {
        const auto [first, last] = days(Clock::today());
        static_cast<TDBDateTimeEditEh *>(start)->setDateTimeText(dateToText(first) + u" 00:00:00");
        static_cast<TDBDateTimeEditEh *>(end)->setDateTimeText(dateToText(last) + u" 23:59:59");
    });
    return *this;
}

ConditionRow row(QStringView label, QWidget *control) { return { label.toString(), control }; }

ConditionRow row(QWidget *control) { return { {}, control }; }

LookupRow row(QStringView label, TDBLookupComboboxEh *control, const char *labelName)
{
    return { { label.toString(), control, labelName } };
}

ListRow row(QStringView label, TDBComboBoxEh *control, const char *labelName) { return { { label.toString(), control, labelName } }; }

ConditionBox box(QGroupBox *groupBox, QStringView caption, int columns, const QList<ConditionRow> &rows)
{
    return { groupBox, caption.toString(), columns, rows };
}

ConditionBox block(int columns, const QList<ConditionRow> &rows) { return { nullptr, {}, columns, rows }; }

RangeBox range(QGroupBox *groupBox, QStringView caption, TDBDateTimeEditEh *start, TDBDateTimeEditEh *end)
{
    return { box(groupBox, caption, 1, { { QStringLiteral("开始"), start, "Label1" }, { QStringLiteral("结束"), end, "Label4" } }) };
}

} // namespace plugin
