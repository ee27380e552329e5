#include "plugin/forms/scan/ufrm_SendNextUnCome.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_SendNextUnCome = nullptr;

namespace {

const GridColumns resultColumns = centredFooters(scanListColumns(u"下一网点"));

const QString notArrived = QStringLiteral(" and (not exists(select /*+index(b,TAB_SCAN_COME_I)*/1 from tab_scan_come b  "
                                          "where bill_code=a.bill_code and scan_site=a.PRE_OR_NEXT_STATION))");

} // namespace

Tfrm_SendNextUnCome::Tfrm_SendNextUnCome(TComponentOwner *owner)
    : QueryScreen(owner, QStringLiteral("frm_SendNextUnCome"), u"本站有发下站未到")
{
    cb1->setText(QStringLiteral("只查主单"));
    CheckBox1->setText(QStringLiteral("按相同网点查询"));
    CheckBox1->hide();
    InputList1->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored); // as high as the conditions beside it
    arrange({ {
        row(InputList1),
        range(u"扫描时间范围(3天以内)").yesterday(),
        block(3,
            {
                row(u"扫描网点", DBLookupComboboxEh5, "Label11").sites(dm_GlobalData->ds_loginSiteOwner).loginSite().completes(),
                row(u"班次", DBComboBoxEh4, "Label5").shifts(),
                row(u"物品类别", DBComboBoxEh1, "Label2").goodsTypes(),
                row(u"快件类型", DBComboBoxEh2, "Label3").fastTypes(),
                row(u"寄件网点", DBLookupComboboxEh1, "Label8").sites(dm_GlobalData->ds_site).completes(),
                row(u"目的网点", DBLookupComboboxEh4, "Label10").sites(dm_GlobalData->ds_site).completes(),
                row(u"下一网点", DBL_NEXTSITE, "Label6").sites(dm_GlobalData->ds_site).completes(),
                row(cb1),
            }),
    } });
    askByList(InputList1);
    result(DataView1, cds, resultColumns, 1);
}

void Tfrm_SendNextUnCome::FormCreate()
{
    QueryScreen::FormCreate();
    FLoginSite = DBLookupComboboxEh5->text();
}

void Tfrm_SendNextUnCome::queryByList(const QString &bills)
{
    // The site is always the one that is logged in, whatever the conditions show.
    openStatement(cds,
        u"select /*+index(a,TAB_SCAN_SEND_I)*/a.* from tab_scan_send a  where a.bill_code in " + bills + u" and a.scan_site='" + FLoginSite
            + u'\'' + notArrived + mainBillsOnly() + u" order by a.bill_code");
}

void Tfrm_SendNextUnCome::queryByConditions()
{
    if (refuseEmpty(DBLookupComboboxEh5, u"扫描网点必须选择！") || refuseRange(3))
        return;
    openStatement(cds,
        u"select /*+index(a,TAB_SCAN_SEND_I3)*/a.* from tab_scan_send a  " + whereInRange(u"a.scan_date") + u" and a.SCAN_SITE='"
            + DBLookupComboboxEh5->text() + u'\'' + unlessAll(u" and a.class='", DBComboBoxEh4)
            + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1) + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2)
            + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1) + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh4)
            + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBL_NEXTSITE) + mainBillsOnly() + u' ' + notArrived + u" order by a.bill_code");
}

QString Tfrm_SendNextUnCome::mainBillsOnly() const
{
    if (!cb1->isChecked())
        return {};
    const QString pattern = GlobalValueAddr(QStringLiteral("MainBill")).replace(u'\'', QStringLiteral("''"));
    return u" and REGEXP_INSTR(a.bill_code, '" + pattern
        + u"', 1, 1) > 0  and REGEXP_INSTR(a.bill_code, '^([1,2,4,6][0-9]{7})$', 1, 1) = 0 ";
}
