#include "plugin/forms/report/ufrm_MonthRecBill.h"

#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_MonthRecBill = nullptr;

namespace {

const GridColumns summaryColumns {
    text("DISPATCH_OR_SEND_MAN", u"收件员", 160),
    text("CUSTOMER_NAME", u"客户名称", 200),
    number("bill_count", u"票数", 100).sum(u"总票数"),
    number("weight", u"重量", 120).sum(u"总重量"),
    money("TRANSFER_OR_DISPATCH_FEE", u"中转费", 120).sum(u"总金额"),
};

/// Weighed once per parcel, on its main waybill, so that the detail adds up to its sum.
GridColumns detailColumns()
{
    GridColumns columns = scanListColumns(u"上一网点");
    columns.insert(10, text("CUSTOMER_NAME", u"客户名称", 120));
    for (Column &column : columns) {
        if (column.fieldName == u"WEIGHT")
            column.fieldName = QStringLiteral("WEIGHT1");
    }
    return centredFooters(columns);
}

} // namespace

Tfrm_MonthRecBill::Tfrm_MonthRecBill(TComponentOwner *owner)
    : MonthList(owner, QStringLiteral("frm_MonthRecBill"), u"月收件清单")
{
    Button2->setText(QStringLiteral("收件清单(&1)"));
    design(
        {
            row(u"收件员", DBLookupComboboxEh3).employees().completes(),
            manRow(),
            goodsTypeRow(),
            fastTypeRow(),
            senderRow(),
            destinationRow(),
            siteRow(DBLookupComboboxEh5),
            shiftRow(),
        },
        { row(Button2) }, centredFooters(summaryColumns), detailColumns());
    handle(Button2, &QPushButton::clicked, this, [this] { printDetail(QStringLiteral("RecBill.frf")); });
}

QString Tfrm_MonthRecBill::summary() const
{
    return u"select /*+index(a," + index(u"TAB_SCAN_REC")
        + u")*/a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME,sum(case when a.SUB_BILL_CODE is null then nvl(a.WEIGHT,0) else 0 end) as WEIGHT,"
          "count(a.BILL_CODE) as bill_count,sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)) as TRANSFER_OR_DISPATCH_FEE from tab_scan_rec a "
        + FWhereSql + u" group by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME order by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME";
}

QString Tfrm_MonthRecBill::conditions() const
{
    return unlessEmpty(u" and a.DISPATCH_OR_SEND_MAN='", DBLookupComboboxEh3) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1) + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2)
        + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1) + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh4)
        + unlessAll(u" and a.class='", DBComboBoxEh4);
}

Detail Tfrm_MonthRecBill::detail() const
{
    const QString courier = summaryText(u"DISPATCH_OR_SEND_MAN");
    const QString customer = summaryText(u"CUSTOMER_NAME");
    return { courier + customer,
        u"select /*+index(a," + index(u"TAB_SCAN_REC")
            + u")*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT,nvl(b.GOODS_PAYMENT,0) as GOODS_PAYMENT,(case when a.SUB_BILL_CODE is null then "
              "nvl(a.WEIGHT,0) else 0 end) as WEIGHT1 from tab_scan_rec a left join tab_bill b on a.bill_code=b.bill_code "
            + FWhereSql + u" and a.DISPATCH_OR_SEND_MAN='" + courier + u"' and nvl(a.CUSTOMER_NAME,'*')=nvl('" + customer
            + u"','*') order by a.DISPATCH_OR_SEND_MAN,a.CUSTOMER_NAME,a.bill_code" };
}
