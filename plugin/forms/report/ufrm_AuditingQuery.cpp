#include "plugin/forms/report/ufrm_AuditingQuery.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_AuditingQuery = nullptr;

namespace {

const GridColumns summaryColumns {
    text("AREA_NAME", u"片区", 120),
    text("PRE_OR_NEXT_STATION", u"网点名称", 120),
    number("bill_count", u"票数", 80).sum(u"总票数"),
    number("WEIGHT", u"重量", 80).sum(u"总重量"),
    money("TRANSFER_OR_DISPATCH_FEE", u"中转费", 90).sum(u"总金额"),
    money("aduiting_FEE", u"审核中转费", 90).sum(u"总金额"),
    money("sum_fee", u"差值", 90).sum(u"总差额"),
};

const GridColumns detailColumns {
    text("BILL_CODE", u"运单编号", 80),
    text("SUB_BILL_CODE", u"子单号", 80),
    text("DISPATCH_OR_SEND_MAN2", u"收件业务员", 66),
    text("OWNER_BAG_NO", u"袋号", 80),
    text("SCAN_TYPE", u"扫描类型", 54),
    text("SCAN_SITE", u"扫描网点", 70),
    time("SCAN_DATE", u"扫描日期", 120),
    text("SCAN_MAN", u"扫描人", 60),
    text("SCAN_MAN_CODE", u"扫描人编号", 66),
    time("REGISTER_DATE", u"录入日期", 120),
    text("SEND_SITE", u"寄件网点", 70),
    text("DISPATCH_SITE", u"目的网点", 70),
    text("PRE_OR_NEXT_STATION", u"上一网点", 70),
    number("PIECE", u"件数", 50).sum(u"总件数"),
    number("WEIGHT", u"重量", 60).sum(u"总重量"),
    text("CLASS", u"班次", 60),
    text("FAST_TYPE", u"快件类型", 60),
    money("TRANSFER_OR_DISPATCH_FEE", u"中转/派件费", 72).sum(u"总金额"),
    text("GOODS_TYPE", u"物品类别", 60),
    money("other_fee", u"应收派件费", 70).sum(u"总金额"),
    money("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
    text("REMARK", u"备注", 200),
};

constexpr QStringView feesByStation
    = u"sum(nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 end,0)) as WEIGHT, count(a.BILL_CODE) as bill_count,"
      "sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)) as  TRANSFER_OR_DISPATCH_FEE, sum(a.NET_MANAGE_FEE) as aduiting_FEE , "
      "(sum(nvl(TRANSFER_OR_DISPATCH_FEE,0))-sum(a.NET_MANAGE_FEE)) as sum_fee  from tab_scan_come a ";

constexpr QStringView detailByDate
    = u"select /*+index(a,TAB_SCAN_COME_I3)*/ a.BILL_CODE, a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE , "
      "a.SCAN_MAN,a.SCAN_MAN_CODE,a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN, a.SEND_SITE,a.DISPATCH_SITE,a.PRE_OR_NEXT_STATION,a.PIECE , "
      "a.WEIGHT,a.CLASS,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE, a.GOODS_TYPE,a.other_fee,a.NET_MANAGE_FEE,a.REMARK,  "
      "(select /*+index(b TAB_SCAN_REC_I)*/ b.DISPATCH_OR_SEND_MAN from tab_scan_rec b   where b.bill_code=a.bill_code and b.scan_date=  "
      "(select /*+index(c TAB_SCAN_REC_I)*/ min(c.scan_date) from tab_scan_rec c where c.bill_code=a.bill_code) and rownum=1) as "
      "DISPATCH_OR_SEND_MAN2       from tab_scan_come a  ";
constexpr QStringView detailByList
    = u"select /*+index(a,TAB_SCAN_COME_I)*/ a.BILL_CODE, a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE , "
      "a.SCAN_MAN,a.SCAN_MAN_CODE,a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN, a.SEND_SITE,a.DISPATCH_SITE,a.PRE_OR_NEXT_STATION,a.PIECE,  "
      "a.WEIGHT,a.CLASS,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE, a.GOODS_TYPE,a.other_fee,a.NET_MANAGE_FEE,a.REMARK ,  "
      "(select /*+index(b TAB_SCAN_REC_I)*/ b.DISPATCH_OR_SEND_MAN from tab_scan_rec b where b.bill_code=a.bill_code and b.scan_date= "
      "(select /*+index(c TAB_SCAN_REC_I)*/ min(c.scan_date) from tab_scan_rec c where c.bill_code=a.bill_code) and rownum=1) as "
      "DISPATCH_OR_SEND_MAN2    from tab_scan_come a ";

} // namespace

Tfrm_AuditingQuery::Tfrm_AuditingQuery(TComponentOwner *owner)
    : SummaryDetailScreen(owner, QStringLiteral("frm_AuditingQuery"), u"审核中转费查询")
{
    arrange({ {
        range(u"扫描时间范围(31天以内)").yesterday(),
        block(3,
            {
                row(u"上一站", DBLookupComboboxEh5).sites(dm_GlobalData->ds_site).completes(),
                row(u"班次", DBComboBoxEh4).shifts(),
                row(u"扫描人", DBLookupComboboxEh2).employees(),
                row(u"物品类别", DBComboBoxEh1).goodsTypes(),
                row(u"快件类型", DBComboBoxEh2).fastTypes(),
                row(u"寄件网点", DBLookupComboboxEh1).sites(dm_GlobalData->ds_site),
                row(u"目的网点", DBLookupComboboxEh4).sites(dm_GlobalData->ds_site),
                row(u"扫描网点", DBLookupComboboxEh3).sites(dm_GlobalData->ds_loginSiteOwner).loginSite().returnsToLoginSite(),
            }),
    } });
    placeLeft(InputList1);
    summaryAndDetail(
        { TabSheet1, u"汇总", DataView2, cdssum, summaryColumns }, { TabSheet2, u"明细", DataView1, cds, detailColumns }, QString());
}

void Tfrm_AuditingQuery::queryByList(const QString &bills)
{
    FWhereSql = u" where a.bill_code in " + bills + u" and a.scan_site='" + GlobalValueAddr(QStringLiteral("site")) + u'\'';
    openSummary(u"select /*+index(a,TAB_SCAN_COME_I)*/a.PRE_OR_NEXT_STATION,   ", ByList);
}

void Tfrm_AuditingQuery::queryByConditions()
{
    if (refuseEmpty(DBLookupComboboxEh3, u"扫描网点必须选择！") || refuseRange(31))
        return;
    FWhereSql = u' ' + whereInRange(u"a.scan_date") + u" and a.scan_site='" + DBLookupComboboxEh3->text() + u'\''
        + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4) + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1)
        + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2) + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1)
        + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh4);
    openSummary(u"select /*+index(a,TAB_SCAN_COME_P)*/a.PRE_OR_NEXT_STATION,  ", ByDate);
}

void Tfrm_AuditingQuery::openSummary(QStringView head, int tag)
{
    openStatement(cdssum,
        u"select b.area_name,a.* from (" + head + feesByStation + FWhereSql
            + u" group by a.PRE_OR_NEXT_STATION) a left join tab_site b on a.PRE_OR_NEXT_STATION=b.site_name order by "
              "b.area_name,a.PRE_OR_NEXT_STATION",
        tag);
}

Detail Tfrm_AuditingQuery::detail() const
{
    const QString station = summaryText(u"PRE_OR_NEXT_STATION");
    // By date the quote of the last condition is followed by "and" at once.
    if (cdssum->tag() == ByDate)
        return { station,
            detailByDate + FWhereSql + u"and PRE_OR_NEXT_STATION= '" + station + u"'  order by a.scan_site,a.PRE_OR_NEXT_STATION" };
    return { station,
        detailByList + FWhereSql + u" and PRE_OR_NEXT_STATION='" + station + u"' order by a.scan_site,a.PRE_OR_NEXT_STATION" };
}
