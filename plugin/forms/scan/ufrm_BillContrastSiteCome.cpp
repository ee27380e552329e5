#include "plugin/forms/scan/ufrm_BillContrastSiteCome.h"

#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/scan/bill_columns.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_BillContrastSiteCome = nullptr;

namespace {

enum Contrast { WithReceipt, WithSendOut };
enum FastType { AllTypes, PearlRiverDelta, HongKong, SameCity };

GridColumns resultColumns()
{
    GridColumns columns
        = billColumns(text("DISPATCH_SITE", u"录单目的网点", 100).readOnly().ellipsis().dropDown({ QStringLiteral("SITE_NAME") }));
    columns.insert(9, text("SCAN_DISPATCH_SITE", u"扫描目的网点", 100));
    columns.append(text("class", u"班次", 70));
    return columns;
}

const QString destinationReceived
    = QStringLiteral("(select /*+index(c,TAB_SCAN_COME_I)*/c.scan_site from TAB_SCAN_COME c where c.bill_code=a.bill_code and "
                     "c.scan_date=(select /*+index(d,TAB_SCAN_COME_I)*/max(d.scan_date) from TAB_SCAN_COME d where "
                     "d.bill_code=c.bill_code and d.scan_type='接件') and c.scan_type='接件' and rownum=1)");
const QString destinationSentTo
    = QStringLiteral("(select /*+index(c,TAB_SCAN_SEND_I)*/c.PRE_OR_NEXT_STATION from TAB_SCAN_SEND c where c.bill_code=a.bill_code and "
                     "c.scan_date=(select /*+index(d,TAB_SCAN_SEND_I)*/max(d.scan_date) from TAB_SCAN_SEND d where "
                     "d.bill_code=c.bill_code and d.scan_type='出库') and c.scan_type='出库' and rownum=1)");

/// That the site in a column of the waybill is, or is not, one of the company's own outlets.
QString ownOutlet(QStringView column, QStringView comparison)
{
    return u"exists(select /*+index(x,TAB_SITE_U)*/1 from tab_site x where x.site_name=a." + column + u" and x.type" + comparison
        + u"'直营网点')";
}

} // namespace

Tfrm_BillContrastSiteCome::Tfrm_BillContrastSiteCome(TComponentOwner *owner)
    : QueryScreen(owner, QStringLiteral("frm_BillContrastSiteCome"), u"录单对比网点到件")
{
    CheckBox1->setText(QStringLiteral("包括子单"));
    CheckBox1->setChecked(true);
    CheckBox1->hide();
    RadioGroup1->setTitle(QStringLiteral("对比类型"));
    RadioGroup1->setItems({ QStringLiteral("对比网点接件"), QStringLiteral("对比中心出库") });
    RadioGroup1->setItemIndex(WithReceipt);
    arrange({ {
        range(u"寄件日期范围(3天以内)").yesterday(),
        block(2,
            {
                row(u"录单网点", DBLookupComboboxEh5, "Label11").sites(dm_GlobalData->ds_loginSiteOwner).loginSite().completes(),
                row(u"目的网点", DBLookupComboboxEh1, "Label2").sites(dm_GlobalData->ds_AllSite).completes(),
                row(u"快件类型", DBComboBoxEh1, "Label3").items(QStringLiteral("全部\r珠三角\r香港\r同城")),
                row(u"班次", DBComboBoxEh2, "Label5").shifts(),
            }),
        row(RadioGroup1),
    } });
    result(DataView2, cds, resultColumns());
    DataView2->DataViewGrid->onGetCellParams
        = [this](int row, int, CellParameters &parameters) { DataView2DataViewGridGetCellParams(row, parameters); };
}

void Tfrm_BillContrastSiteCome::queryByConditions()
{
    if (refuseRange(3))
        return;
    const QString chosen = bills() + unlessEmpty(u" and a.send_site='", DBLookupComboboxEh5)
        + unlessEmpty(u" and a.DISPATCH_SITE='", DBLookupComboboxEh1) + ofFastType() + unlessAll(u" and a.class='", DBComboBoxEh2);
    openStatement(cds, u"select a.* from (" + chosen + u") a order by a.send_site,a.bill_code,a.sub_bill_code desc");
}

QString Tfrm_BillContrastSiteCome::bills() const
{
    if (RadioGroup1->itemIndex() < 0)
        return cds->commandText(); // without a choice the conditions are added to the last statement
    return u"select /*+index(a,TAB_BILL_I)*/a.*,'' as sub_bill_code,"
        + (RadioGroup1->itemIndex() == WithReceipt ? destinationReceived : destinationSentTo) + u" as SCAN_DISPATCH_SITE from tab_bill a "
        + whereInRange(u"a.send_date");
}

/// By the item and not by the text: a typed one that is no item asks nothing.
QString Tfrm_BillContrastSiteCome::ofFastType() const
{
    switch (DBComboBoxEh1->itemIndex()) {
    case PearlRiverDelta:
        return u" and a.send_site<>'香港' and a.DISPATCH_SITE<>'香港' and (" + ownOutlet(u"send_site", u"<>") + u" or "
            + ownOutlet(u"DISPATCH_SITE", u"<>") + u')';
    case HongKong:
        return QStringLiteral(" and (a.send_site='香港' or a.DISPATCH_SITE='香港')");
    case SameCity:
        return u" and " + ownOutlet(u"send_site", u"=") + u" and " + ownOutlet(u"DISPATCH_SITE", u"=");
    default:
        return {};
    }
}

void Tfrm_BillContrastSiteCome::DataView2DataViewGridGetCellParams(int row, CellParameters &parameters) const
{
    DataView2->DataViewGridGetCellParams(row, parameters);
    const auto site = [this, row](QStringView field) { return cds->text(cds->fieldByName(field)->index(), row); };
    if (site(u"DISPATCH_SITE") != site(u"SCAN_DISPATCH_SITE"))
        parameters.background = Qt::red;
}
