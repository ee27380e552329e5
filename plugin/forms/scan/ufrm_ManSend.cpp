#include "plugin/forms/scan/ufrm_ManSend.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_ManSend = nullptr;

namespace {

const GridColumns summaryColumns {
    text("area_name", u"片区", 150).hidden(),
    text("CLASS", u"班次", 120),
    text("scan_man", u"扫描人", 120),
    number("BILLCOUNT", u"票数", 120).sum(u"总票数"),
    number("WEIGHT", u"重量", 120).sum(u"总重量"),
    text("scan_site", u"所属班组", 100).hidden(),
};

const GridColumns detailColumns = manDetailColumns(u"下一网点");

/// The weight of the waybill's latest arrival at the site that sent it out.
const QString arrivalWeight
    = QStringLiteral("(select /*+index(c,TAB_SCAN_COME_I)*/c.weight from tab_scan_come c where c.bill_code=a.bill_code and "
                     "c.scan_site=a.scan_site and c.scan_date =(select /*+index(d,TAB_SCAN_COME_I)*/ max(scan_date) from tab_scan_come d "
                     "where d.bill_code = c.bill_code and d.scan_site=c.scan_site)) as weight from tab_scan_send a ");

} // namespace

Tfrm_ManSend::Tfrm_ManSend(TComponentOwner *owner)
    : ManStatistics(owner, QStringLiteral("frm_ManSend"), u"扫描员发件统计")
{
    design(
        {
            siteRow(),
            stationRow(u"下一站"),
            manRow(),
            shiftRow(),
        },
        summaryColumns, detailColumns);
}

QString Tfrm_ManSend::statistics() const
{
    return u"select a.class, a.scan_man,sum(a.weight) as weight,sum(a.billcount) as billcount from "
           "(select /*+index(a,TAB_SCAN_SEND_I3)*/ a.class,1 as billcount, a.scan_man,"
        + arrivalWeight + FWhere + u") a  group by a.class, a.scan_man order by a.class,a.scan_man";
}

Detail Tfrm_ManSend::detail() const
{
    return {
        .key = summaryText(u"scan_man") + summaryText(u"class"),
        .statement = u"select /*+index(a,TAB_SCAN_SEND_I3)*/a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,"
                     "a.SCAN_MAN,a.SCAN_MAN_CODE,a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.SEND_SITE,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,"
                     "a.PIECE,a.CLASS,a.GOODS_TYPE,a.NET_MANAGE_FEE,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE,a.other_fee,a.REMARK,"
            + arrivalWeight + FWhere + asInSummary(u"scan_man") + asInSummary(u"class") + u"order by a.scan_site",
    };
}
