#include "plugin/forms/report/ufrm_DispFeeQry1.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_DispFeeQry1 = nullptr;

namespace {

const GridColumns summaryColumns {
    text("RECORD_SITE", u"派件站点", 120),
    text("REC_SITE", u"寄件站点", 80),
    text("type", u"同/外省", 80),
    number("BILL_COUNT", u"同省票数", 80).sum(u"总票数", Qt::AlignHCenter),
    money("DISPATCH_FEE", u"同省派件费", 80).sum(u"总派件费"),
    number("BILL_COUNT1", u"外省票数", 80).sum(u"总票数", Qt::AlignHCenter),
    money("DISPATCH_FEE1", u"外省派件费", 80).sum(u"总派件费"),
};

const GridColumns detailColumns {
    text("BILL_CODE", u"运单编号", 100),
    text("STATE_NAME", u"签收状态", 52),
    text("DISPATCH_NAME", u"派件员", 60).dropDown({ QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("EMPLOYEE_NAME") }),
    text("SIGN_MAN", u"签收人", 60),
    time("SIGN_DATE", u"签收时间", 120),
    time("RECORD_DATE", u"录入时间", 120),
    text("RECORD_SITE", u"录入站点", 70),
    text("RECORD_MAN", u"录入人", 60),
    text("RECORD_MAN_CODE", u"录入人编号"),
    text("REMARK", u"备注", 200),
    text("REC_SITE", u"寄件|网点", 80),
    text("REC_SITE1", u"寄件|所属一级网点", 80),
    text("REC_SITE_CENTER", u"寄件|所属财务中心", 80),
    text("SIGN_SITE", u"派件|所属一级网点", 80),
    text("SIGN_SITE_CENTER", u"派件|所属财务中心", 80),
    money("DISPATCH_FEE", u"派件费", 80).sum(u"总金额", Qt::AlignHCenter),
};

} // namespace

Tfrm_DispFeeQry1::Tfrm_DispFeeQry1(TComponentOwner *owner)
    : SummaryDetailScreen(owner, QStringLiteral("frm_DispFeeQry1"), u"内派费查询")
{
    CheckBox1->setText(QStringLiteral("只按签收站点统计"));
    CheckBox1->setChecked(true);
    arrange({ {
        range(u"签收时间范围(31天以内)").daysOnly().yesterday(),
        block(1,
            {
                row(u"派件站点", DBLookupComboboxEh1).sites(dm_GlobalData->ds_AllSite).loginSite().completes(),
                row(u"同/外省", DBComboBoxEh4).items(QStringLiteral("全部\r同省\r外省")),
            }),
        row(CheckBox1),
    } });
    summaryAndDetail({ TabSheet1, u"汇总数据", DataView1, cdsSum, summaryColumns },
        { TabSheet2, u"明细数据", DataView2, cds, detailColumns, 2 }, QStringLiteral("~!@#$%"));
}

void Tfrm_DispFeeQry1::FormCreate()
{
    SummaryDetailScreen::FormCreate();
    FLoginSite = DBLookupComboboxEh1->text();
    const TClientDataSetEx *loginSite = GlobalCdsAddr(QStringLiteral("loginsite"));
    FProvince = loginSite->fieldByName(u"PROVINCE")->asString();
    TClientDataSetEx *comm = dm_BasicData->comm;
    openStatement(comm, u"select a.site_name from tab_site a where a.PROVINCE='" + FProvince + u'\'');
    FProvinceSiteList = siteList(comm);
    comm->close();
    // Only a centre may ask for other sites.
    DBLookupComboboxEh1->setEnabled(loginSite->fieldByName(u"type")->asString() == u"中心");
}

void Tfrm_DispFeeQry1::queryByConditions()
{
    FBySignSiteOnly = CheckBox1->isChecked();
    QString statement; // stays empty after a refused range; the database refuses it then
    if (!refuseRange(31)) {
        FDateWhere = u"where a.sign_date between " + toDate(DBDateTimeEditEh1->text() + u" 00:00:00") + u" and "
            + toDate(DBDateTimeEditEh2->text() + u" 23:59:59");
        const QString site = DBLookupComboboxEh1->text();
        if (!FProvinceSiteList.contains(site)) {
            refuse(u"所选的派件站点与登录站点不在同一个省份!");
            return;
        }
        const QString where = FDateWhere
            + (site.isEmpty() ? QString(u" and a.RECORD_SITE in " + FProvinceSiteList) : QString(u" and a.RECORD_SITE='" + site + u'\''));
        statement = FBySignSiteOnly ? bySite(where) : bySiteAndProvince(where);
    }
    openStatement(cdsSum, statement);
    if (!FBySignSiteOnly)
        filterByProvince();
}

// The hints lack their plus sign, which makes them plain comments.
QString Tfrm_DispFeeQry1::bySite(const QString &where) const
{
    const QString same = u"(b.province='" + FProvince + u"')";
    return u" select /*index(a,TAB_SIGN_SUM_I)*/ a.RECORD_SITE,'' as type,'' as REC_SITE,  sum(case when " + same
        + u" then a.BILL_COUNT else 0 end) as BILL_COUNT, sum(case when (b.province<>'" + FProvince
        + u"' ) then a.BILL_COUNT else 0 end) as BILL_COUNT1,  sum(case when " + same
        + u" then a.dispatch_fee else 0 end ) as dispatch_fee,  sum(case when (b.province<>'" + FProvince
        + u"') then a.dispatch_fee else 0 end) as dispatch_fee1  from TAB_SIGN_SUM a inner join tab_site b on a.rec_site=b.site_name  "
        + where + u"group by a.RECORD_SITE ";
}

QString Tfrm_DispFeeQry1::bySiteAndProvince(const QString &where) const
{
    const QString same = u" case when (b.province='" + FProvince + u"')";
    const QString other = u" case when (b.province<>'" + FProvince + u"' )";
    return u" select  a.RECORD_SITE,a.REC_SITE,a.type,sum(a.BILL_COUNT) as BILL_COUNT, sum(a.BILL_COUNT1) as BILL_COUNT1 ,"
           "sum(a.dispatch_fee) as dispatch_fee, sum(a.dispatch_fee1) as dispatch_fee1   from ( "
           " select /*index(a,TAB_SIGN_SUM_I)*/ a.RECORD_SITE,a.REC_SITE,"
        + same + u" then '同省' else '外省' end  as type," + same + u" then a.BILL_COUNT else 0 end  as BILL_COUNT," + other
        + u" then a.BILL_COUNT else 0 end as BILL_COUNT1, " + same + u" then a.dispatch_fee else 0 end  as dispatch_fee, " + other
        + u" then a.dispatch_fee else 0 end as dispatch_fee1  from TAB_SIGN_SUM a inner join tab_site b on a.rec_site=b.site_name "
          "inner join tab_site c  on a.record_site=c.site_name  "
        + where + u" )a group by a.RECORD_SITE,a.REC_SITE,a.type ";
}

void Tfrm_DispFeeQry1::filterByProvince()
{
    cdsSum->setFiltered(false);
    const QString type = DBComboBoxEh4->text();
    if (type != u"同省" && type != u"外省")
        return;
    cdsSum->setFilter(u"type= '" + type + u'\'');
    cdsSum->setFiltered(true);
}

Detail Tfrm_DispFeeQry1::detail() const
{
    const QString site = summaryText(u"RECORD_SITE");
    const QString of = u" and a.RECORD_SITE='" + site + u"' and a.SIGN_SITE_CENTER is not null ";
    const QString statement = u"select /*index(a,TAB_SIGN_I2)*/ a.* from tab_sign a " + FDateWhere + of;
    if (!FBySignSiteOnly)
        return { site + summaryText(u"REC_SITE"), statement + u" and a.rec_site='" + summaryText(u"REC_SITE") + u'\'' };
    const QString column = selectedField();
    const QString from = column == u"BILL_COUNT" ? QString(u" and a.REC_SITE in " + FProvinceSiteList)
        : column == u"BILL_COUNT1"               ? QString(u" and a.REC_SITE not in " + FProvinceSiteList)
                                                 : QString();
    return { site + column, statement + from };
}
