#include "plugin/forms/scan/ufrm_ManCome.h"

#include <QAbstractItemView>

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_ManCome = nullptr;

namespace {

const GridColumns summaryColumns {
    text("area_name", u"片区", 150),
    text("CLASS", u"班次", 80),
    text("scan_man", u"扫描人", 80),
    number("BILLCOUNT", u"票数", 80).sum(u"总票数"),
    number("WEIGHT", u"重量", 80).sum(u"总重量"),
};

const GridColumns detailColumns = manDetailColumns(u"上一网点");

} // namespace

Tfrm_ManCome::Tfrm_ManCome(TComponentOwner *owner)
    : ManStatistics(owner, QStringLiteral("frm_ManCome"), u"扫描员到件统计")
{
    DBComboBoxEh1->setMaxVisibleItems(20);
    DBComboBoxEh1->view()->setMinimumWidth(300);
    design(
        {
            row(u"片区名称", DBComboBoxEh1, "Label2").areas(),
            stationRow(u"上一站"),
            shiftRow(),
            siteRow(),
            manRow(),
        },
        summaryColumns, detailColumns);
}

QString Tfrm_ManCome::statistics() const
{
    // A parcel of several pieces is weighed once, on its main waybill, but each of its pieces is counted.
    return u"select a.* from (select /*+index(a,TAB_SCAN_COME_I3)*/ b.area_name,a.class,a.scan_man,"
           "sum(nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 end,0)) as WEIGHT,count(a.BILL_CODE) as billcount  "
           "from tab_scan_come a left join tab_site b on a.pre_or_next_station=b.site_name"
        + FWhere + u"group by b.area_name, a.class,a.scan_man) a" + unlessAll(u" where a.area_name='", DBComboBoxEh1);
}

Detail Tfrm_ManCome::detail() const
{
    const QString area = summaryText(u"area_name");
    const QString stationInArea = area.isEmpty()
        ? QStringLiteral(" and not exists (select area_name from tab_site where site_name = a.pre_or_next_station ) ")
        : QString(u" and exists (select area_name from tab_site where site_name = a.pre_or_next_station and  area_name = '" + area + u"')");
    return {
        .key = summaryText(u"scan_man") + summaryText(u"class") + area,
        .statement = u"select /*+index(a,TAB_SCAN_COME_I3)*/ a.*  from tab_scan_come a" + FWhere + asInSummary(u"scan_man")
            + asInSummary(u"class") + stationInArea + u"order by a.scan_site,a.PRE_OR_NEXT_STATION",
    };
}
