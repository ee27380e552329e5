#include "plugin/forms/report/ufrm_MonthSendBill.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_MonthSendBill = nullptr;

namespace {

const GridColumns summaryColumns {
    text("area_name1", u"上站片区", 160).hidden(),
    text("area_name", u"片区名称", 160),
    text("PRE_OR_NEXT_STATION", u"下一站", 160),
    number("bill_count", u"票数", 100).sum(u"总票数"),
    number("weight", u"重量", 100).sum(u"总重量"),
};

const GridColumns detailColumns = centredFooters(scanListColumns(u"下一网点"));

} // namespace

Tfrm_MonthSendBill::Tfrm_MonthSendBill(TComponentOwner *owner)
    : MonthList(owner, QStringLiteral("frm_MonthSendBill"), u"月发件清单")
{
    Button2->setText(QStringLiteral("清单打印(&1)"));
    Button3->setText(QStringLiteral("清单打印(&2)"));
    design(
        {
            row(u"下一站", DBLookupComboboxEh5).sites(dm_GlobalData->ds_site).completes(),
            siteRow(DBLookupComboboxEh3),
            goodsTypeRow(),
            shiftRow(),
            manRow(),
            fastTypeRow(),
            senderRow(),
            destinationRow(),
            row(u"上站片区", DBComboBoxEh3).areas(),
        },
        { row(Button2), row(Button3) }, centredFooters(summaryColumns), detailColumns);
    handle(Button2, &QPushButton::clicked, this, [this] { printDetail(QStringLiteral("SendBill1.frf")); });
    handle(Button3, &QPushButton::clicked, this, [this] { printDetail(QStringLiteral("SendBill2.frf")); });
}

void Tfrm_MonthSendBill::FormCreate()
{
    MonthList::FormCreate();
    DBComboBoxEh3->setEnabled(GlobalValueAddr(QStringLiteral("site")) == u"北京市内部");
}

QString Tfrm_MonthSendBill::summary() const
{
    return u"select /*+index(a," + index(u"TAB_SCAN_SEND")
        + u")*/b.area_name,a.PRE_OR_NEXT_STATION,count(a.bill_code) as bill_count,sum(case when a.SUB_BILL_CODE is null then a.WEIGHT else "
          "0 end) as WEIGHT from TAB_SCAN_SEND a left join tab_site b on a.PRE_OR_NEXT_STATION=b.site_name "
        + FWhereSql + u" group by b.area_name,a.PRE_OR_NEXT_STATION order by b.area_name,a.PRE_OR_NEXT_STATION";
}

QString Tfrm_MonthSendBill::conditions() const
{
    // b is the site in the summary and the waybill in the detail.
    return unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4) + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1)
        + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2) + unlessEmpty(u" and b.SEND_SITE='", DBLookupComboboxEh1)
        + unlessEmpty(u" and b.DISPATCH_SITE='", DBLookupComboboxEh4)
        + unlessAll(u" and exists(select /*+index(c,TAB_SCAN_COME_I)*/  1 from tab_scan_come c where  c.bill_code =a.bill_code and "
                    " c.scan_site ='北京市内部' and exists (select /*+index(b,TAB_SITE_U)*/ 1 from tab_site b where "
                    " b.site_name = c.pre_or_next_station  and b.area_name ='",
            DBComboBoxEh3, u"') )");
}

Detail Tfrm_MonthSendBill::detail() const
{
    const QString station = summaryText(u"PRE_OR_NEXT_STATION");
    return { station,
        u"select /*+index(a," + index(u"TAB_SCAN_SEND")
            + u")*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT from tab_scan_send a left join tab_bill b on a.bill_code=b.bill_code " + FWhereSql
            + u" and a.PRE_OR_NEXT_STATION='" + station + u"' order by a.scan_site,a.PRE_OR_NEXT_STATION" };
}
