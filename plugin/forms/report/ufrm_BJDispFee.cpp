#include "plugin/forms/report/ufrm_BJDispFee.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_BJDispFee = nullptr;

namespace {

const GridColumns summaryColumns {
    text("scan_site1", u"站点", 120),
    text("dispatch_or_send_man", u"业务员", 100),
    number("BILL_COUNT1", u"收件票数", 90).sum(u"总票数"),
    money("DISPATCH_FEE1", u"收件费", 90).sum(u"总收件费"),
    number("BILL_COUNT2", u"派件票数", 90).sum(u"总派件票数"),
    money("DISPATCH_FEE2", u"派件费", 90).sum(u"总派件费"),
    money("sum", u"合计", 90).sum(u"总金额"),
};

const GridColumns detailColumns {
    text("BILL_CODE", u"运单编号", 100),
    text("STATE_NAME", u"签收状态", 60),
    text("SIGN_MAN", u"签收人", 60),
    text("DISPATCH_OR_SEND_MAN1", u"扫描收件员", 70),
    text("DISPATCH_OR_SEND_MAN2", u"扫描派件员", 70),
    text("DISPATCH_NAME", u"派件员", 60).dropDown({ QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("EMPLOYEE_NAME") }),
    time("SIGN_DATE", u"签收时间", 120),
    time("RECORD_DATE", u"录入时间", 120),
    text("RECORD_SITE", u"录入站点", 80),
    text("RECORD_MAN", u"录入人", 60),
    text("RECORD_MAN_CODE", u"录入人编号", 70),
    text("REMARK", u"备注", 200),
    text("REC_SITE", u"寄件网点", 80),
    money("DISPATCH_FEE", u"派件费", 70).sum(u"总金额"),
    text("scan_site1", u"收件扫描站点", 80),
    text("scan_site2", u"派件扫描站点", 80),
};

// A delivered waybill counts for the courier of its latest delivery scan, a picked-up one for that of its earliest pick-up scan.
const QString courierOfDelivery = QStringLiteral(
    "select /*+index(a,TAB_SIGN_I2)*/  (select /*+index(b,TAB_SCAN_DISP_I)*/  b.dispatch_or_send_man  from tab_scan_disp b "
    "where b.bill_code=a.bill_code and b.scan_date=  ( select /*+index(c,TAB_SCAN_DISP_I)*/ max(c.scan_date) from "
    "tab_scan_disp c  where c.bill_code=b.bill_code ) and rownum=1) as dispatch_or_send_man,");
const QString courierOfPickUp
    = QStringLiteral("select /*+index(a,TAB_SIGN_I2)*/ (select /*+index(b,TAB_SCAN_REC_I)*/  b.dispatch_or_send_man  from TAB_SCAN_REC b "
                     "where b.bill_code=a.bill_code and b.scan_date=  ( select /*+index(c,TAB_SCAN_REC_I)*/ min(c.scan_date) from "
                     "TAB_SCAN_REC c  where c.bill_code=b.bill_code )and rownum=1) as dispatch_or_send_man,");
const QString latestDeliveryOf = QStringLiteral(" and exists(select /*+index(a,TAB_SCAN_DISP_I)*/ 1 from tab_scan_disp b  where "
                                                "b.bill_code=a.bill_code  and b.scan_date=  ( select /*+index(c,TAB_SCAN_DISP_I)*/ "
                                                "max(c.scan_date) from tab_scan_disp c  where c.bill_code=b.bill_code ) ");
const QString earliestPickUpOf = QStringLiteral(" and exists(select /*+index(a,TAB_SCAN_REC_I)*/ 1 from TAB_SCAN_REC b  where "
                                                "b.bill_code=a.bill_code  and b.scan_date=  ( select /*+index(c,TAB_SCAN_REC_I)*/ "
                                                "min(c.scan_date) from TAB_SCAN_REC c  where c.bill_code=b.bill_code ) ");

const QString detailHead
    = QStringLiteral("select /*+index(a,TAB_SIGN_I2)*/  a.* ,b.DISPATCH_OR_SEND_MAN as DISPATCH_OR_SEND_MAN1, b.scan_site as  scan_site1   "
                     ",c.DISPATCH_OR_SEND_MAN as DISPATCH_OR_SEND_MAN2, c.scan_site as  scan_site2   from tab_sign a left join "
                     "tab_scan_rec b on b.bill_code=a.bill_code  left join tab_scan_disp c on c.bill_code=a.bill_code ");
const QString latestDelivery = QStringLiteral(" and c.scan_date=  ( select /*+index(b,TAB_SCAN_DISP_I)*/ max(b.scan_date) from "
                                              "tab_scan_disp b  where b.bill_code=a.bill_code ) ");
const QString earliestPickUp = QStringLiteral(" and b.scan_date=  ( select /*+index(c,TAB_SCAN_REC_I)*/ min(c.scan_date) from "
                                              "TAB_SCAN_REC c  where c.bill_code=a.bill_code ) ");
const QString earliestPickUpLower = QStringLiteral(" and b.scan_date=  ( select /*+index(c,tab_scan_rec_I)*/ min(c.scan_date) from "
                                                   "tab_scan_rec c  where a.bill_code=c.bill_code ) ");

} // namespace

Tfrm_BJDispFee::Tfrm_BJDispFee(TComponentOwner *owner)
    : SummaryDetailScreen(owner, QStringLiteral("frm_BJDispFee"), u"北京市内收派费查询")
{
    arrange({ {
        range(u"签收时间范围(31天以内)").daysOnly().yesterday(),
        block(1,
            { row(u"站点", DBLookupComboboxEh1).sites(ds_site).loginSite(), row(u"业务员", DBLookupComboboxEh6).employees().completes() }),
    } });
    summaryAndDetail({ TabSheet1, u"汇总数据", DataView1, cds1, summaryColumns },
        { TabSheet2, u"明细数据", DataView2, cds2, detailColumns }, QStringLiteral("~!@#$%"));
    handle(DBLookupComboboxEh1, &TDBLookupComboboxEh::exited, this, &Tfrm_BJDispFee::DBLookupComboboxEh1Exit);
}

void Tfrm_BJDispFee::FormCreate()
{
    SummaryDetailScreen::FormCreate();
    FLoginSite = DBLookupComboboxEh1->text();
    const TClientDataSetEx *loginSite = GlobalCdsAddr(QStringLiteral("loginsite"));
    FProvince = loginSite->fieldByName(u"PROVINCE")->asString();
    ds_site->setDataSet(cds_site);
    ds_owneremployee->setDataSet(cds_owneremployee);
    openStatement(cds_site, u"select a.site_name,a.SITE_CODE,a.SUPERIOR_SITE from tab_site a where a.PROVINCE='" + FProvince + u'\'');
    FProvinceSiteList = siteList(cds_site);
    // Only a centre may ask for other sites.
    DBLookupComboboxEh1->setEnabled(loginSite->fieldByName(u"type")->asString() == u"中心");
}

void Tfrm_BJDispFee::DBLookupComboboxEh1Exit()
{
    LookupComboTextExit(DBLookupComboboxEh1);
    const QString site = DBLookupComboboxEh1->text();
    if (site.isEmpty())
        return;
    openStatement(cds_owneremployee,
        u"select /*+index(a,TAB_EMPLOYEE_I)*/a.EMPLOYEE_CODE,a.EMPLOYEE_NAME, a.OWNER_SITE,a.DEPT_NAME from tab_employee a where "
        "a.OWNER_SITE='"
            + site + u"' and a.DEPT_NAME='业务部'");
    DBLookupComboboxEh6->setListSource(ds_owneremployee);
}

void Tfrm_BJDispFee::queryByConditions()
{
    // The days stand for the whole of them: the times that are not shown are part of the range.
    const QString start = DBDateTimeEditEh1->dateTimeText();
    const QString end = DBDateTimeEditEh2->dateTimeText();
    if (CheckDateRange(start, end, 31, true) || refuseEmpty(DBLookupComboboxEh1, u"站点必须选择!"))
        return;
    const QString signedFor = u"a.sign_date between " + toDate(start) + u"  and  " + toDate(end) + u"  and a.SIGN_SITE_CENTER='北京'";
    const QString site = DBLookupComboboxEh1->text();
    const QString courier = DBLookupComboboxEh6->text();
    FDateWhere = u" where " + signedFor;
    openStatement(cds1,
        u"select a.scan_site1,a.dispatch_or_send_man,a.bill_count2,a.bill_count1,  -a.dispatch_fee2 as dispatch_fee2,  "
        "a.dispatch_fee1 as dispatch_fee1,(a.dispatch_fee1-a.dispatch_fee2) as sum  from (select a.scan_site1 ,a.dispatch_or_send_man,   "
        "sum((case when flag=1 then 1 else 0 end )) as bill_count2, sum((case when flag=1 then a.dispatch_fee else 0 end )) as "
        "dispatch_fee2, sum((case when flag=0 then 1 else 0 end )) as bill_count1, sum((case when flag=0 then a.dispatch_fee else 0 end "
        ")) as dispatch_fee1  from ("
            + delivered(signedFor, site, courier) + u" union all " + pickedUp(signedFor, site, courier)
            + u") a group by a.scan_site1,a.dispatch_or_send_man) a ");
}

QString Tfrm_BJDispFee::delivered(const QString &signedFor, const QString &site, const QString &courier) const
{
    return courierOfDelivery + u'\'' + site + u"' as scan_site1,  1 as flag, a.dispatch_fee from tab_sign a where  " + signedFor
        + latestDeliveryOf + u" and b.scan_site='" + site + u"')"
        + (courier.isEmpty() ? QString() : QString(latestDeliveryOf + u" and b.dispatch_or_send_man='" + courier + u"')"))
        + u" and a.REC_SITE_CENTER=a.SIGN_SITE_CENTER";
}

QString Tfrm_BJDispFee::pickedUp(const QString &signedFor, const QString &site, const QString &courier) const
{
    return courierOfPickUp + u'\'' + site + u"' as scan_site1,  0 as flag, a.dispatch_fee from tab_sign a where  " + signedFor
        + u" and exists(select /*+index(a,TAB_SCAN_DISP_I)*/ 1 from tab_scan_disp b  left join tab_site c on c.site_name=b.scan_site   "
          "where b.bill_code=a.bill_code and c.PROVINCE='"
        + FProvince + u"')" + earliestPickUpOf + u" and b.scan_site='" + site + u"')"
        + (courier.isEmpty() ? QString() : QString(earliestPickUpOf + u" and b.dispatch_or_send_man='" + courier + u"')"));
}

Detail Tfrm_BJDispFee::detail() const
{
    const QString site = summaryText(u"scan_site1");
    const QString courier = summaryText(u"dispatch_or_send_man");
    const QString column = selectedField();
    const QString key = site + courier + column;
    if (column == u"BILL_COUNT1" || column == u"DISPATCH_FEE1")
        return { key,
            detailHead + FDateWhere + earliestPickUpLower + u" and b.scan_site='" + site + u"' and  b.dispatch_or_send_man='" + courier
                + u'\'' + latestDelivery + u" and c.scan_site in " + FProvinceSiteList };
    if (column == u"BILL_COUNT2" || column == u"DISPATCH_FEE2")
        return { key,
            detailHead + FDateWhere + latestDelivery + u" and c.scan_site='" + site + u"' and c.dispatch_or_send_man='" + courier + u'\''
                + earliestPickUp + u" and b.scan_site in " + FProvinceSiteList };
    return { key,
        detailHead + FDateWhere + earliestPickUpLower + u" and  b.scan_site='" + site + u"' and  b.dispatch_or_send_man='" + courier + u'\''
            + latestDelivery + u" and  c.scan_site in " + FProvinceSiteList + u" union all " + detailHead + FDateWhere + latestDelivery
            + u" and  c.scan_site='" + site + u"' and  c.dispatch_or_send_man='" + courier + u'\'' + earliestPickUp
            + u" and  b.scan_site in " + FProvinceSiteList };
}
