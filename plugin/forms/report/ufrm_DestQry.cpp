#include "plugin/forms/report/ufrm_DestQry.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/forms/base/scan_columns.h"
#include "plugin/forms/report/shift_classes.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_DestQry = nullptr;

namespace {

const QString byStation = QStringLiteral("1");
const QString byDestination = QStringLiteral("2");

const GridColumns summaryColumns = GridColumns {
    text("area_name65", u"片区名称", 100),
    text("PRE_OR_NEXT_STATION65", u"上一站点", 100),
    text("DISPATCH_SITE65", u"目的网点", 100),
} + shiftClassColumns();

const GridColumns detailColumns = scanColumns(u"上一网点")
    + GridColumns {
          money("TRANSFER_OR_DISPATCH_FEE", u"中转/派件费", 72).sum(u"总金额"),
          money("TOPAYMENT", u"到付款", 70).sum(u"总金额"),
          remarkColumn(),
      };

QString equalOrNull(QStringView column, const QString &value)
{
    return value.isEmpty() ? QString(u" and a." + column + u" is null") : QString(u" and a." + column + u"='" + value + u'\'');
}

} // namespace

Tfrm_DestQry::Tfrm_DestQry(TComponentOwner *owner)
    : SummaryDetailScreen(owner, QStringLiteral("frm_DestQry"), u"目的网点月统计")
{
    RadioButton1->setText(QStringLiteral("按上一站点和目的网点统计"));
    RadioButton1->setChecked(true);
    RadioButton2->setText(QStringLiteral("按目的网点统计"));
    arrange({
        {
            range(u"扫描时间范围(31天以内)").yesterday(),
            box(GroupBox2, u"重量范围输入", 1, { row(u"开始重量", DBNumberEditEh1), row(u"结束重量", DBNumberEditEh2) }),
            block(1, { row(RadioButton1), row(RadioButton2) }),
        },
        { block(5,
            {
                row(u"扫描网点", DBLookupComboboxEh3).sites(dm_GlobalData->ds_loginSiteOwner).loginSite().completes(),
                row(u"上一站", DBLookupComboboxEh5).sites(dm_GlobalData->ds_site).completes(),
                row(u"目的网点", DBLookupComboboxEh4).sites(dm_GlobalData->ds_site).completes(),
                row(u"寄件网点", DBLookupComboboxEh1).sites(dm_GlobalData->ds_site).completes(),
                row(u"扫描人", DBLookupComboboxEh2).employees().completes(),
                row(u"物品类别", DBComboBoxEh1).goodsTypes(),
                row(u"快件类型", DBComboBoxEh2).fastTypes(),
                row(u"片区名称", DBComboBoxEh3).areas(),
                row(u"班组", DBComboBoxEh4),
                row(u"车次", DBComboBoxEh5),
                row(u"直营站点", DBComboBoxEh6).items(QStringLiteral("全部\r直营\r非直营")),
            }) },
    });
    placeLeft(InputList1);
    summaryAndDetail(
        { TabSheet1, u"统计数据", DataView2, cdsSum, summaryColumns }, { TabSheet2, u"明细数据", DataView1, cds, detailColumns });
    openGuestFromDetail([] { return QList<TCustomRemoteServer *> { dm_BasicData->HostConnection, dm_GlobalData->SecondConnection }; });
    for (QRadioButton *button : { RadioButton1, RadioButton2 })
        handle(button, &QRadioButton::clicked, this, &Tfrm_DestQry::RadioButtonClick);
}

void Tfrm_DestQry::FormCreate()
{
    SummaryDetailScreen::FormCreate();
    ds_Site_Basic->setDataSet(cds_Site_Basic);
    fillFromSiteBasic(DBComboBoxEh4, QStringLiteral("CLASS_GROUP_NAME"));
    fillFromSiteBasic(DBComboBoxEh5, QStringLiteral("CAR_NAME"));
}

void Tfrm_DestQry::fillFromSiteBasic(TDBComboBoxEh *combo, const QString &field)
{
    openStatement(cds_Site_Basic, u"select distinct a." + field + u"  from tab_site_basic a");
    fillList(combo, cds_Site_Basic, field);
}

void Tfrm_DestQry::RadioButtonClick()
{
    TDBGridEh *grid = DataView2->DataViewGrid;
    for (const auto &[field, place] : { std::pair(u"area_name65", 0), std::pair(u"PRE_OR_NEXT_STATION65", 1) }) {
        const int column = grid->columnIndex(field);
        grid->setColumnVisible(column, RadioButton1->isChecked());
        if (RadioButton1->isChecked())
            grid->moveColumn(column, place);
    }
}

QString Tfrm_DestQry::head(QStringView index) const
{
    const QString hint = u"select /*+index(a," + index + u")*/";
    if (FMode == byStation)
        return hint + u"a.PRE_OR_NEXT_STATION as PRE_OR_NEXT_STATION65,a.DISPATCH_SITE as DISPATCH_SITE65," + shiftClassSums();
    return hint + QStringView(index == u"TAB_SCAN_COME_I3" ? u" " : u"") + u"a.DISPATCH_SITE as DISPATCH_SITE65," + shiftClassSums();
}

void Tfrm_DestQry::queryByList(const QString &bills)
{
    FWhere = u" where a.bill_code in " + bills + u" and a.scan_site='" + GlobalValueAddr(QStringLiteral("site")) + u'\'';
    FMode = RadioButton1->isChecked() ? byStation : byDestination;
    const QString scans = head(u"TAB_SCAN_COME_I") + FWhere;
    // The text by destination is one that the database refuses; it is kept as it was audited.
    openStatement(cdsSum,
        FMode == byDestination
            ? QString(scans + u"group by a.DISPATCH_SITE65 order by a.DISPATCH_SITE65")
            : QString(u"select b.area_name as area_name65,a.* from (" + scans
                + u" group by a.PRE_OR_NEXT_STATION ,a.DISPATCH_SITE) a left join tab_site b on "
                  "a.PRE_OR_NEXT_STATION65=b.site_name  order by  area_name65,a.PRE_OR_NEXT_STATION65,a.DISPATCH_SITE65"),
        ByList);
}

void Tfrm_DestQry::queryByConditions()
{
    if (refuseEmpty(DBLookupComboboxEh3, u"扫描网点必须选择！") || refuseRange(31))
        return;
    FMode = RadioButton1->isChecked() ? byStation : byDestination;
    addConditions();
    const QString scans = head(u"TAB_SCAN_COME_I3") + FWhere;
    if (FMode == byDestination) {
        openStatement(cdsSum, scans + siteBasicCondition({}) + u" group by a.DISPATCH_SITE  order by DISPATCH_SITE65", ByDate);
        return;
    }
    const QString area = unlessAll(u"where b.area_name =  '", DBComboBoxEh3);
    openStatement(cdsSum,
        u"select b.area_name as area_name65,a.* from (" + scans
            + u" group by a.PRE_OR_NEXT_STATION ,a.DISPATCH_SITE) a  left join tab_site b on a.PRE_OR_NEXT_STATION65=b.site_name  " + area
            + siteBasicCondition(area) + u"  order by  area_name65,a.PRE_OR_NEXT_STATION65,a.DISPATCH_SITE65",
        ByDate);
}

void Tfrm_DestQry::addConditions()
{
    const bool stations = FMode == byStation;
    FWhere = u' ' + whereInRange(u"a.scan_date") + u" and a.scan_site='" + DBLookupComboboxEh3->text() + u'\'';
    const QString owned = QStringLiteral(" and exists(select /*+index( b,TAB_SITE_BASIC_P)*/1  from tab_site_basic b where "
                                         "b.site_name=a.DISPATCH_SITE and ");
    const QString owner = DBComboBoxEh6->text();
    if (owner == u"直营")
        FWhere += owned + u"b.bl_self=1 )";
    else if (owner == u"非直营")
        FWhere += owned + u"nvl(b.bl_self,0)=0 )";
    FWhere += unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.GOODS_TYPE='", DBComboBoxEh1) + unlessAll(u" and a.FAST_TYPE='", DBComboBoxEh2)
        + unlessEmpty(u" and a.SEND_SITE='", DBLookupComboboxEh1)
        + unlessEmpty(stations ? u" and a.DISPATCH_SITE='" : u"  and a.DISPATCH_SITE='", DBLookupComboboxEh4, stations ? u"'" : u"'  ")
        + unlessEmpty(stations ? u" and nvl(a.WEIGHT,0) >='" : u" and  nvl(a.WEIGHT,0)  >='", DBNumberEditEh1, u"' ")
        + unlessEmpty(u" and nvl(a.WEIGHT,0)  <='", DBNumberEditEh2, u"' ");
    if (!stations)
        FWhere
            += unlessAll(u"  and exists (select /*+index(b,TAB_SITE_U)*/ 1 from tab_site b where b.site_name = a.pre_or_next_station and "
                         "b.area_name =  '",
                DBComboBoxEh3, u"')");
}

/// The test of the destination's class group and car. By station it stands behind the outer join, where it follows `area`, or a
/// "where" of its own.
QString Tfrm_DestQry::siteBasicCondition(const QString &area) const
{
    const bool stations = FMode == byStation;
    const QString tests = unlessAll(u" and c.CLASS_GROUP_NAME =  '", DBComboBoxEh4, stations ? u"' " : u"'")
        + unlessAll(stations ? u" and c.CAR_NAME =  '" : u"  and c.CAR_NAME =  '", DBComboBoxEh5, stations ? u"'  " : u"' ");
    if (tests.isEmpty())
        return {};
    const QString opening = QStringLiteral("exists(select /*+index(c,TAB_SITE_BASIC_P)*/ 1 from tab_site_basic c where c.site_name =");
    if (!stations)
        return u" and " + opening + u"a.DISPATCH_SITE " + tests + u") ";
    return QStringView(area.isEmpty() ? u" where " : u"") + u" and  " + opening + u"a.DISPATCH_SITE65 " + tests + u") ";
}

Detail Tfrm_DestQry::detail() const
{
    const QChar code = shiftClassOf(selectedField());
    const bool stations = FMode == byStation;
    const QString station = stations ? summaryText(u"PRE_OR_NEXT_STATION65") : QString();
    const QString destination = summaryText(u"DISPATCH_SITE65");
    return {
        .key = station + destination + code,
        .statement = u"select /*+index(a," + QStringView(cdsSum->tag() == ByList ? u"TAB_SCAN_COME_I" : u"TAB_SCAN_COME_I3")
            + u")*/a.*,nvl(b.TOPAYMENT,0) as TOPAYMENT from tab_scan_come a left join tab_bill b on a.bill_code=b.bill_code " + FWhere
            + ofShiftClass(code) + (stations ? equalOrNull(u"PRE_OR_NEXT_STATION", station) : QString())
            + equalOrNull(u"DISPATCH_SITE", destination) + u"  order by a.scan_site,a.PRE_OR_NEXT_STATION",
        // Without the class, so that no key ever equals it and each visit queries again.
        .remembered = station + destination,
    };
}
