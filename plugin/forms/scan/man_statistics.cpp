#include "plugin/forms/scan/man_statistics.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"
#include "plugin/util/conditions.h"

GridColumns manDetailColumns(QStringView station)
{
    return scanColumns(station) + feeColumns()
        + GridColumns {
              number("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
              number("", u"到付款", 70).sum(u"总金额").hidden(),
              remarkColumn(),
          };
}

void ManStatistics::design(const QList<ConditionRow> &rows, const GridColumns &summary, const GridColumns &detail)
{
    arrange({ { range(GroupBox1, u"扫描时间范围(31天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2), block(3, rows) } });
    summaryAndDetail({ TabSheet1, u"统计数据", DataView2, cds, summary }, { TabSheet2, u"明细数据", DataView1, cds1, detail, 1 });
    openGuestFromDetail([] { return QList<TCustomRemoteServer *> { dm_BasicData->HostConnection }; });
    loginSiteOnExit(DBLookupComboboxEh1);
    completeOnExit({ DBLookupComboboxEh5, DBLookupComboboxEh2 });
}

void ManStatistics::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    setSiteLookup({ DBLookupComboboxEh5 }, dm_GlobalData->ds_site);
    setSiteLookup({ DBLookupComboboxEh1 }, dm_GlobalData->ds_loginSiteOwner);
    setEmployeeLookup({ DBLookupComboboxEh2 }, dm_GlobalData->ds_employee);
    fillFromHost({ DBComboBoxEh4 }, QStringLiteral("Class"), QStringLiteral("CLASS_NAME"));
    setToday(DBDateTimeEditEh1, DBDateTimeEditEh2);
    DBLookupComboboxEh1->setText(GlobalValueAddr(QStringLiteral("site")));
}

void ManStatistics::Button1Click()
{
    const QueryRun run(this);
    if (DBLookupComboboxEh1->text().isEmpty()) {
        refuse(QStringLiteral("详细：扫描站点必须选择!"), DBLookupComboboxEh1);
        return;
    }
    if (CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), 31, true))
        return;
    FWhere = u' ' + whereBetween(u"a.scan_date", DBDateTimeEditEh1, DBDateTimeEditEh2) + u" and a.scan_site='" + DBLookupComboboxEh1->text()
        + u'\'' + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4);
    openStatement(cds, statistics());
}

QString ManStatistics::asInSummary(QStringView column) const
{
    const QString value = summaryText(column);
    return value.isEmpty() ? QString(u" and a." + column + u" is null ") : QString(u" and a." + column + u"='" + value + u'\'');
}
