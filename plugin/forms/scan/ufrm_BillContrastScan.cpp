#include "plugin/forms/scan/ufrm_BillContrastScan.h"

#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"
#include "plugin/forms/scan/bill_columns.h"

#include <QLabel>

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_BillContrastScan = nullptr;

namespace {

enum Question { BillsWithoutScan, ScansWithoutBill };

const GridColumns billResult
    = billColumns(text("DISPATCH_SITE", u"目的网点", 70).readOnly().ellipsis().dropDown({ QStringLiteral("SITE_NAME") }));
const GridColumns scanResult = scanColumns(u"下一网点") + GridColumns { text("TRUCK_WAY", u"车线", 80), remarkColumn() };

/// Numbers of inner documents: eight digits that begin with 1, or a letter and seven digits.
const QString noInnerNumbers = QStringLiteral(" and (REGEXP_INSTR(a.bill_code,'^((1)[0-9]{7})$|^([A-Za-z]{1}[0-9]{7})$',1,1)=0) ");

} // namespace

Tfrm_BillContrastScan::Tfrm_BillContrastScan(TComponentOwner *owner)
    : PagedScreen(owner, QStringLiteral("frm_BillContrastScan"), u"录单扫描对比")
{
    Button1->setText(QStringLiteral("有单查询"));
    Button2->setText(QStringLiteral("无单查询"));
    CheckBox1->setText(QStringLiteral("包括子单"));
    CheckBox1->setChecked(true);
    CheckBox2->setText(QStringLiteral("手工录单"));
    for (QWidget *unseen : { static_cast<QWidget *>(Button2), static_cast<QWidget *>(CheckBox1), static_cast<QWidget *>(CheckBox2) })
        unseen->hide();
    RadioGroup1->setTitle(QStringLiteral("对比类型"));
    RadioGroup1->setItems({ QStringLiteral("有单无扫描"), QStringLiteral("无单有扫描") });
    RadioGroup1->setItemIndex(ScansWithoutBill);
    arrange({ {
        row(RadioGroup1),
        range(u"扫描时间范围(3天以内)").yesterday(),
        block(2,
            {
                row(u"扫描网点", DBLookupComboboxEh5, "Label11").sites(dm_GlobalData->ds_site).loginSite().completes(),
                row(u"扫描类型", DBComboBoxEh1, "Label2").scanTypes(),
                row(u"扫描网点", DBLookupComboboxEh1, "Label3").sites(dm_GlobalData->ds_AllSite).loginSite().completes(),
                row(u"寄件网点", DBLookupComboboxEh2, "Label5").sites(dm_GlobalData->ds_AllSite).completes(),
            }),
    } });
    setConditionVisible(DBLookupComboboxEh1, false);
    page(TabSheet1, u"有单无扫描", DataView2, cds, billResult, 2);
    page(TabSheet2, u"无单有扫描", DataView1, cds1, scanResult, 0, Button2);
    DataView2->Panel1->setText(QStringLiteral("到付款录入"));
    handle(RadioGroup1, &TRadioGroup::clicked, this, &Tfrm_BillContrastScan::RadioGroup1Click);
    handle(Button2, &QPushButton::clicked, this, &Tfrm_BillContrastScan::Button2Click);
}

void Tfrm_BillContrastScan::RadioGroup1Click(int itemIndex)
{
    const bool bills = itemIndex == BillsWithoutScan;
    PageControl1->setTabVisible(bills ? TabSheet1 : TabSheet2, true);
    PageControl1->setTabVisible(bills ? TabSheet2 : TabSheet1, false);
    GroupBox1->setTitle(bills ? QStringLiteral("寄件日期范围(3天以内)") : QStringLiteral("扫描时间范围(3天以内)"));
    labelOf(DBLookupComboboxEh5)->setText(bills ? QStringLiteral("录单网点") : QStringLiteral("扫描网点"));
    setConditionVisible(DBLookupComboboxEh1, bills);
    setConditionVisible(DBLookupComboboxEh2, !bills);
}

void Tfrm_BillContrastScan::queryByConditions()
{
    const QString type = DBComboBoxEh1->text();
    const QString table = GetScanTableName(type);
    if (refuseRange(3))
        return;
    const QString bills = u"select /*+index(a,TAB_BILL_I)*/a.*,'' as sub_bill_code from tab_bill a " + whereInRange(u"a.send_date")
        + unlessEmpty(u" and a.send_site='", DBLookupComboboxEh5) + u" and (not exists(select /*+index(b," + table + u"_I)*/1 from " + table
        + u" b where b.bill_code=a.bill_code" + unlessEmpty(u" and b.scan_site='", DBLookupComboboxEh1) + u" and b.scan_type='" + type
        + u"'))";
    // On purpose the test goes to the other page's statement, whose own query makes it anew.
    cds1->setCommandText(cds1->commandText() + noInnerNumbers);
    openStatement(cds, u"select a.* from (" + bills + u") a order by a.bill_code,a.sub_bill_code desc");
}

void Tfrm_BillContrastScan::Button2Click()
{
    const QueryRun run(this);
    const QString type = DBComboBoxEh1->text();
    const QString table = GetScanTableName(type);
    if (refuseRange(3))
        return;
    const QString scans = u"select /*+index(a," + table
        + u"_I3)*/ a.bill_code,a.SUB_BILL_CODE, a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,"
          "a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,a.CLASS,a.GOODS_TYPE,a.PIECE,a.WEIGHT,"
          "a.FAST_TYPE,a.REMARK , (select /*+index(c,TAB_SCAN_COME_I)*/ c.PRE_OR_NEXT_STATION  from tab_scan_come c "
          " where c.bill_code=a.bill_code and c.SCAN_SITE in ('北京','北京市内部','北京贷款')"
          " and c.SCAN_DATE=(select /*+index(b,TAB_SCAN_COME_I)*/ max(b.scan_date) from tab_scan_come b where "
          " b.bill_code=c.bill_code and b.SCAN_SITE in ('北京','北京市内部','北京贷款')"
          " ) and rownum=1 )as send_site   from "
        + table + u" a " + whereInRange(u"a.scan_date") + unlessEmpty(u" and a.scan_site='", DBLookupComboboxEh5) + u" and a.scan_type='"
        + type + u"' and (not exists(select /*+index(b,TAB_BILL_P)*/1 from tab_bill b where b.bill_code=a.bill_code))" + noInnerNumbers
        + u" order by a.bill_code,a.sub_bill_code desc";
    const QString sender = DBLookupComboboxEh2->text();
    openStatement(cds1, sender.isEmpty() ? scans : QString(u" select a.* from (" + scans + u") a where a.send_site='" + sender + u'\''));
}
