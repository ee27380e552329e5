#include "plugin/forms/report/ufrm_MonthCalc.h"

#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_MonthCalc = nullptr;

namespace {

const GridColumns summaryColumns {
    text("PRE_STATION", u"上一站点", 160),
    number("bill_count", u"票数", 100).sum(u"总票数"),
};

const GridColumns detailColumns = scanColumns(u"上一网点") + feeColumns()
    + GridColumns {
          money("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
          money("TOPAYMENT", u"到付款", 70).sum(u"总金额"),
          remarkColumn(),
      };

} // namespace

Tfrm_MonthCalc::Tfrm_MonthCalc(TComponentOwner *owner)
    : PagedScreen(owner, QStringLiteral("frm_MonthCalc"), u"月票量统计")
{
    InputList1->hide();
    askByList(InputList1); // which then asks nothing
    arrange({ {
        range(u"对帐创建时间(31天以内)").yesterday(),
        row(u"站点名称", DBLookupComboboxEh4).sites(dm_GlobalData->ds_loginSiteOwner).completes(),
    } });
    page(TabSheet1, u"统计数据", DataView2, cdsSum, summaryColumns);
    page(TabSheet2, u"明细数据", DataView1, cds, detailColumns);
    PageControl1->setTabVisible(TabSheet2, false);
}

void Tfrm_MonthCalc::queryByConditions()
{
    if (refuseRange(31))
        return;
    openStatement(cdsSum,
        u" select /*+index(a,TAB_ACCOUNT_LIST_I6)*/ a.PRE_STATION,count(1) as bill_count  from tab_account_list a  "
            + whereInRange(u"a.create_date") + u" and a.pre_finance_center='广东中心'"
            + unlessEmpty(u" and a.PRE_STATION ='", DBLookupComboboxEh4) + u" group by a.PRE_STATION ",
        1);
}
