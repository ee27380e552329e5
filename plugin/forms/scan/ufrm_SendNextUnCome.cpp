#include "plugin/forms/scan/ufrm_SendNextUnCome.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"
#include "plugin/util/conditions.h"

Tfrm_Basic *frm_SendNextUnCome = nullptr;

namespace {

const GridColumns resultColumns = scanListColumns(u"下一网点");

const QString notArrived = QStringLiteral(" and (not exists(select /*+index(b,TAB_SCAN_COME_I)*/1 from tab_scan_come b  "
                                          "where bill_code=a.bill_code and scan_site=a.PRE_OR_NEXT_STATION))");

} // namespace

Tfrm_SendNextUnCome::Tfrm_SendNextUnCome(TComponentOwner *owner)
    : QueryScreen(owner, QStringLiteral("frm_SendNextUnCome"), u"本站有发下站未到")
{
    cb1->setText(QStringLiteral("只查主单"));
    CheckBox1->setText(QStringLiteral("按相同网点查询"));
    CheckBox1->hide();
    arrange({ {
        range(GroupBox1, u"扫描时间范围(3天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2),
        block(3,
            {
                row(u"扫描网点", DBLookupComboboxEh5),
                row(u"班次", DBComboBoxEh4),
                row(u"物品类别", DBComboBoxEh1),
                row(u"快件类型", DBComboBoxEh2),
                row(u"寄件网点", DBLookupComboboxEh1),
                row(u"目的网点", DBLookupComboboxEh4),
                row(u"下一网点", DBL_NEXTSITE),
                row(cb1),
            }),
    } });
    placeLeft(InputList1);
    result(DataView1, cds, resultColumns, 1);
    completeOnExit({ DBLookupComboboxEh1, DBLookupComboboxEh4, DBLookupComboboxEh5, DBL_NEXTSITE });
    FormCreate();
}

void Tfrm_SendNextUnCome::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    setYesterday(DBDateTimeEditEh1, DBDateTimeEditEh2);
    fillScanLists(DBComboBoxEh1, DBComboBoxEh2, DBComboBoxEh4);
    setSiteLookup({ DBLookupComboboxEh1, DBLookupComboboxEh4, DBL_NEXTSITE }, dm_GlobalData->ds_site);
    setSiteLookup({ DBLookupComboboxEh5 }, dm_GlobalData->ds_loginSiteOwner);
    FLoginSite = GlobalValueAddr(QStringLiteral("site"));
    DBLookupComboboxEh5->setText(FLoginSite);
}

void Tfrm_SendNextUnCome::Button1Click()
{
    const QueryRun run(this);
    if (InputList1->CheckBox1->isChecked())
        queryByList();
    else
        queryByDate();
}

void Tfrm_SendNextUnCome::queryByList()
{
    QString bills;
    InputList1->GetBillList(bills);
    if (bills.isEmpty())
        return;
    // The site is always the one that is logged in, whatever the conditions show.
    openStatement(cds,
        u"select /*+index(a,TAB_SCAN_SEND_I)*/a.* from tab_scan_send a  where a.bill_code in " + bills + u" and a.scan_site='" + FLoginSite
            + u'\'' + notArrived + mainBillsOnly() + u" order by a.bill_code");
}

void Tfrm_SendNextUnCome::queryByDate()
{
    if (DBLookupComboboxEh5->text().isEmpty()) {
        refuse(QStringLiteral("详细：扫描网点必须选择！"), DBLookupComboboxEh5);
        return;
    }
    if (CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), 3, true))
        return;
    openStatement(cds,
        u"select /*+index(a,TAB_SCAN_SEND_I3)*/a.* from tab_scan_send a  "
            + whereBetween(u"a.scan_date", DBDateTimeEditEh1, DBDateTimeEditEh2) + u" and a.SCAN_SITE='" + DBLookupComboboxEh5->text()
            + u'\'' + unlessAll(u" and a.class='", DBComboBoxEh4) + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1)
            + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2) + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1)
            + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh4) + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBL_NEXTSITE)
            + mainBillsOnly() + u' ' + notArrived + u" order by a.bill_code");
}

QString Tfrm_SendNextUnCome::mainBillsOnly() const
{
    if (!cb1->isChecked())
        return {};
    const QString pattern = GlobalValueAddr(QStringLiteral("MainBill")).replace(u'\'', QStringLiteral("''"));
    return u" and REGEXP_INSTR(a.bill_code, '" + pattern
        + u"', 1, 1) > 0  and REGEXP_INSTR(a.bill_code, '^([1,2,4,6][0-9]{7})$', 1, 1) = 0 ";
}
