#include "plugin/forms/scan/stage_contrast.h"

#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"

using namespace platform;
using namespace plugin;

namespace plugin {

namespace {
const GridColumns resultColumns = centredFooters(scanListColumns(u"下一网点", u"收件业务员"));
}

StageContrast::StageContrast(TComponentOwner *owner, const QString &name, QStringView caption, const Choice &first, const Choice &second)
    : QueryScreen(owner, name, caption)
    , m_first(first)
    , m_second(second)
{
    RadioButton1->setText(first.caption.toString());
    RadioButton1->setChecked(true);
    RadioButton2->setText(second.caption.toString());
    arrange({ {
        range(u"扫描时间范围(31天以内)").yesterday(),
        block(3,
            {
                row(u"下一站", DBLookupComboboxEh5, "Label11").sites(dm_GlobalData->ds_site).completes(),
                row(u"班次", DBComboBoxEh4, "Label5").shifts(),
                row(u"扫描网点", DBLookupComboboxEh3, "Label9").sites(dm_GlobalData->ds_loginSiteOwner).loginSite().completes(),
                row(u"扫描人", DBLookupComboboxEh2, "Label6").employees().completes(),
                row(u"物品类别", DBComboBoxEh1, "Label2").goodsTypes(),
                row(u"快件类型", DBComboBoxEh2, "Label3").fastTypes(),
                row(u"寄件网点", DBLookupComboboxEh1, "Label8").sites(dm_GlobalData->ds_site).completes(),
                row(u"目的网点", DBLookupComboboxEh4, "Label10").sites(dm_GlobalData->ds_site).completes(),
            }),
        block(1, { row(RadioButton1), row(RadioButton2) }),
    } });
    result(DataView1, cds, resultColumns, 1);
}

void StageContrast::Button1Click()
{
    if (!refuseEmpty(DBLookupComboboxEh3, u"扫描网点必须选择！") && !refuseLoginSite())
        QueryScreen::Button1Click();
}

void StageContrast::queryByConditions()
{
    if (!refuseRange(31))
        openStatement(cds, statement(RadioButton1->isChecked() ? m_first : m_second));
}

QString StageContrast::statement(const Choice &choice) const
{
    return u"select /*+index(a," + choice.present.toUpper()
        + u"_I3)*/a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,"
          "a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.SEND_SITE,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,a.PIECE,a.WEIGHT,a.CLASS,"
          "a.GOODS_TYPE,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE,a.other_fee,a.REMARK from "
        + choice.present + u" a " + whereInRange(u"a.scan_date") + u" and a.scan_site='" + DBLookupComboboxEh3->text() + u'\''
        + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4) + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1)
        + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2) + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1)
        + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh4) + u" and (not exists(select /*+index(b," + choice.missing.toUpper()
        + u"_I)*/1 from " + choice.missing + u" b where b.bill_code=a.bill_code))";
}

} // namespace plugin
