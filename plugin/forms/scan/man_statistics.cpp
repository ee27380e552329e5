#include "plugin/forms/scan/man_statistics.h"

#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

namespace plugin {

GridColumns manDetailColumns(QStringView station)
{
    return centredFooters(scanColumns(station) + feeColumns()
        + GridColumns {
            money("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
            money("", u"到付款", 70).sum(u"总金额").hidden(),
            remarkColumn(),
        });
}

void ManStatistics::design(const QList<ConditionRow> &rows, const GridColumns &summary, const GridColumns &detail)
{
    arrange({ { range(u"扫描时间范围(31天以内)").today(), block(3, rows) } });
    summaryAndDetail({ TabSheet1, u"统计数据", DataView2, cds, summary }, { TabSheet2, u"明细数据", DataView1, cds1, detail, 1 });
    openGuestFromDetail([] { return QList<TCustomRemoteServer *> { dm_BasicData->HostConnection }; });
}

LookupRow ManStatistics::siteRow()
{
    return row(u"扫描网点", DBLookupComboboxEh1, "Label7").sites(dm_GlobalData->ds_loginSiteOwner).loginSite().returnsToLoginSite();
}

LookupRow ManStatistics::stationRow(QStringView label)
{
    return row(label, DBLookupComboboxEh5, "Label11").sites(dm_GlobalData->ds_site).completes();
}

LookupRow ManStatistics::manRow() { return row(u"扫描人", DBLookupComboboxEh2, "Label6").employees().completes(); }

ListRow ManStatistics::shiftRow() { return row(u"班次", DBComboBoxEh4, "Label5").shifts(); }

void ManStatistics::queryByConditions()
{
    if (refuseEmpty(DBLookupComboboxEh1, u"扫描站点必须选择!") || refuseRange(31))
        return;
    FWhere = u' ' + whereInRange(u"a.scan_date") + u" and a.scan_site='" + DBLookupComboboxEh1->text() + u'\''
        + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4);
    openStatement(cds, statistics());
}

QString ManStatistics::asInSummary(QStringView column) const
{
    const QString value = summaryText(column);
    return value.isEmpty() ? QString(u" and a." + column + u" is null ") : QString(u" and a." + column + u"='" + value + u'\'');
}

} // namespace plugin
