#include "plugin/forms/report/ufrm_SaleQry.h"

#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_SaleQry = nullptr;

namespace {

const GridColumns summaryColumns {
    text("DISPATCH_OR_SEND_MAN", u"收件客户", 120),
    text("PRE_OR_NEXT_STATION", u"上一站点", 120).hidden(),
    number("bill_count", u"票数", 70).sum(u"总票数"),
    number("WEIGHT", u"重量", 70).sum(u"总重量"),
    money("TRANSFER_OR_DISPATCH_FEE", u"中转费", 80).sum(u"总金额"),
    money("OTHER_FEE", u"应收派件费", 80).sum(u"总金额"),
    money("NET_MANAGE_FEE", u"扫描费", 80).sum(u"总金额"),
    money("sum_fee", u"合计金额", 80).sum(u"总金额"),
};

const GridColumns detailColumns = scanColumns(u"上一网点") + feeColumns()
    + GridColumns {
          money("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
          money("TOPAYMENT", u"到付款", 70).sum(u"总金额"),
          remarkColumn(),
      };

/// Arrivals at the hub with the person of the waybill's latest pick-up scan there; `latest` differs in one blank.
QString arrivals(QStringView latest)
{
    return u"select DISPATCH_OR_SEND_MAN,  sum(nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 end,0)) as WEIGHT,"
           "count(a.BILL_CODE) as bill_count,sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)) as TRANSFER_OR_DISPATCH_FEE,"
           "sum(nvl(OTHER_FEE,0)) as OTHER_FEE,sum(nvl(NET_MANAGE_FEE,0)) as NET_MANAGE_FEE,"
           "sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)+nvl(OTHER_FEE,0)+nvl(NET_MANAGE_FEE,0)) as sum_fee  from (  "
           "select /*+index(a,TAB_SCAN_COME_I3)*/ a.sub_bill_code,a.weight,a.bill_code,"
           "a.transfer_or_dispatch_fee,a.other_fee,a.net_manage_fee, ( select /*+index(b,TAB_SCAN_REC_I)*/ b.DISPATCH_OR_SEND_MAN from "
           "tab_scan_rec b where b.bill_code =a.bill_code and b.scan_site =a.scan_site "
        + latest
        + u" from tab_scan_rec c where c.bill_code = b.bill_code and c.scan_site =b.scan_site )) as DISPATCH_OR_SEND_MAN  "
          "from tab_scan_come a ";
}

const QString latestPickUp = QStringLiteral("and b.SCAN_DATE =(select /*+index(c,TAB_SCAN_REC_I)*/  max(c.SCAN_DATE)");

} // namespace

Tfrm_SaleQry::Tfrm_SaleQry(TComponentOwner *owner)
    : SummaryDetailScreen(owner, QStringLiteral("frm_SaleQry"), u"北京业务部统计")
{
    arrange({ {
        range(u"扫描时间范围(31天以内)").yesterday(),
        row(u"收件客户", DBLookupComboboxEh4)
            .from(ds_Man, QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("EMPLOYEE_CODE"),
                { { QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("收件客户编号"), 100 },
                    { QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("收件客户名称"), 100 } })
            .completes(),
    } });
    placeLeft(InputList1);
    summaryAndDetail({ TabSheet1, u"统计数据", DataView2, cdsSum, summaryColumns },
        { TabSheet2, u"明细数据", DataView1, cds, centredFooters(detailColumns), 1 });
    openGuestFromDetail([] { return QList<TCustomRemoteServer *> { dm_BasicData->HostConnection, dm_GlobalData->SecondConnection }; });
}

void Tfrm_SaleQry::FormCreate()
{
    SummaryDetailScreen::FormCreate();
    ds_Man->setDataSet(cdsMan);
    openStatement(cdsMan,
        QStringLiteral("select  /*+index(a,TAB_EMPLOYEE_I)*/ a.EMPLOYEE_CODE ,a.EMPLOYEE_NAME from TAB_EMPLOYEE a where  "
                       "a.OWNER_SITE='北京业务部'"));
}

void Tfrm_SaleQry::queryByList(const QString &bills)
{
    FWhereSql = u"where a.bill_code in " + bills + u" and a.scan_site= '北京' and a.PRE_OR_NEXT_STATION='北京业务部'";
    openStatement(cdsSum, arrivals(QString(u' ' + latestPickUp)) + FWhereSql + u" ) a group by  DISPATCH_OR_SEND_MAN", ByList);
}

void Tfrm_SaleQry::queryByConditions()
{
    if (refuseRange(31))
        return;
    FWhereSql = u' ' + whereInRange(u" a.scan_date") + u" and a.scan_site= '北京' and a.PRE_OR_NEXT_STATION='北京业务部' ";
    openStatement(cdsSum,
        arrivals(latestPickUp) + FWhereSql + u" ) a " + unlessEmpty(u" where a.DISPATCH_OR_SEND_MAN ='", DBLookupComboboxEh4)
            + u"group by  DISPATCH_OR_SEND_MAN",
        ByDate);
}

Detail Tfrm_SaleQry::detail() const
{
    const bool byList = cdsSum->tag() == ByList;
    const QString person = summaryText(u"DISPATCH_OR_SEND_MAN");
    // Both selections ask the same in texts that differ in their blanks.
    const QString latest = u"tab_scan_rec b where b.bill_code =a.bill_code and b.scan_site =a.scan_site and b.SCAN_DATE =(select "
        + QStringView(byList ? u" " : u"")
        + u"/*+index(c,TAB_SCAN_REC_I)*/ max(c.SCAN_DATE) from tab_scan_rec c where "
          "c.bill_code = b.bill_code and c.scan_site = b.scan_site"
        + QStringView(byList ? u"" : u" ") + u')';
    const QString ofPerson = !person.isEmpty()
        ? QString(u"and exists ( select /*+index(b,TAB_SCAN_REC_I)*/ 1 from " + latest + u" and b.DISPATCH_OR_SEND_MAN ='" + person + u"')")
        : QString(u"and not exists" + QStringView(byList ? u"(" : u" (")
            + u" select /*+index(b,TAB_SCAN_REC_I)*/ b.DISPATCH_OR_SEND_MAN from " + latest + QStringView(byList ? u") " : u")"));
    return { person,
        u"select /*+index(a," + QStringView(byList ? u"TAB_SCAN_COME_I" : u"TAB_SCAN_COME_I3")
            + u")*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT from tab_scan_come a left join tab_bill b on a.bill_code=b.bill_code " + FWhereSql
            + ofPerson + u" order by a.scan_site,a.PRE_OR_NEXT_STATION" };
}
