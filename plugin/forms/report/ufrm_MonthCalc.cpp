#include "plugin/forms/report/ufrm_MonthCalc.h"

#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"
#include "plugin/util/conditions.h"

Tfrm_Basic *frm_MonthCalc = nullptr;

namespace {

const GridColumns summaryColumns {
    text("PRE_STATION", u"上一站点", 160),
    number("bill_count", u"票数", 100).sum(u"总票数"),
};

const GridColumns detailColumns = scanColumns(u"上一网点") + feeColumns()
    + GridColumns {
          number("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
          number("TOPAYMENT", u"到付款", 70).sum(u"总金额"),
          remarkColumn(),
      };

} // namespace

Tfrm_MonthCalc::Tfrm_MonthCalc(TComponentOwner *owner)
    : PagedScreen(owner, QStringLiteral("frm_MonthCalc"), u"月票量统计")
{
    InputList1->hide();
    arrange({ {
        range(GroupBox1, u"对帐创建时间(31天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2),
        row(u"站点名称", DBLookupComboboxEh4),
    } });
    page(TabSheet1, u"统计数据", DataView2, cdsSum, summaryColumns);
    page(TabSheet2, u"明细数据", DataView1, cds, detailColumns);
    PageControl1->setTabVisible(TabSheet2, false);
    completeOnExit({ DBLookupComboboxEh4 });
    FormCreate();
}

void Tfrm_MonthCalc::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    setYesterday(DBDateTimeEditEh1, DBDateTimeEditEh2);
    setSiteLookup({ DBLookupComboboxEh4 }, dm_GlobalData->ds_loginSiteOwner);
}

void Tfrm_MonthCalc::Button1Click()
{
    const QueryRun run(this);
    if (InputList1->CheckBox1->isChecked()) {
        QString bills; // fetched, and nothing is queried by it
        InputList1->GetBillList(bills);
        return;
    }
    if (CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), 31, true))
        return;
    openStatement(cdsSum,
        u" select /*+index(a,TAB_ACCOUNT_LIST_I6)*/ a.PRE_STATION,count(1) as bill_count  from tab_account_list a  "
            + whereBetween(u"a.create_date", DBDateTimeEditEh1, DBDateTimeEditEh2) + u" and a.pre_finance_center='广东中心'"
            + unlessEmpty(u" and a.PRE_STATION ='", DBLookupComboboxEh4) + u" group by a.PRE_STATION ",
        1);
}
