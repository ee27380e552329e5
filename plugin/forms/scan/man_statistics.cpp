#include "plugin/forms/scan/man_statistics.h"

#include "platform/toolkit/clock.h"
#include "plugin/data/host_data.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/conditions.h"

GridColumns scanDetailColumns(QStringView station)
{
    return {
        text("BILL_CODE", u"运单编号", 80),
        text("SUB_BILL_CODE", u"子单号", 80),
        text("OWNER_BAG_NO", u"袋号", 80),
        text("SCAN_TYPE", u"扫描类型", 54),
        text("SCAN_SITE", u"扫描网点", 70),
        time("SCAN_DATE", u"扫描日期", 120),
        text("SCAN_MAN", u"扫描人", 60),
        text("SCAN_MAN_CODE", u"扫描人编号", 50),
        time("REGISTER_DATE", u"录入日期", 120),
        text("DISPATCH_OR_SEND_MAN", u"收/派件员", 60),
        text("SEND_SITE", u"寄件网点", 70),
        text("PRE_OR_NEXT_STATION", station, 70),
        text("DISPATCH_SITE", u"目的网点", 70),
        number("PIECE", u"件数", 50).sum(u"总件数"),
        number("WEIGHT", u"重量", 60).sum(u"总重量"),
        text("CLASS", u"班次", 60),
        text("GOODS_TYPE", u"物品类别", 60),
        text("FAST_TYPE", u"快件类型", 60),
        number("TRANSFER_OR_DISPATCH_FEE", u"中转/派件费", 70).sum(u"总金额"),
        number("other_fee", u"应收派件费", 70).sum(u"总金额"),
        number("NET_MANAGE_FEE", u"扫描费", 70).sum(u"总金额"),
        number("", u"到付款", 70).sum(u"总金额").hidden(),
        text("REMARK", u"备注", 200),
    };
}

void ManStatistics::design(const QList<ConditionRow> &rows, const GridColumns &summary, const GridColumns &detail)
{
    arrange({ { range(GroupBox1, u"扫描时间范围(31天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2), block(3, rows) } });
    summaryAndDetail({ TabSheet1, u"统计数据", DataView2, cds, summary }, { TabSheet2, u"明细数据", DataView1, cds1, detail, 1 });
    openGuestFromDetail([] { return QList<TCustomRemoteServer *> { dm_BasicData->HostConnection }; });
    loginSiteOnExit(DBLookupComboboxEh1);
    completeOnExit({ DBLookupComboboxEh5, DBLookupComboboxEh2 });
}

void ManStatistics::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    setSiteLookup({ DBLookupComboboxEh5 }, dm_GlobalData->ds_site);
    setSiteLookup({ DBLookupComboboxEh1 }, dm_GlobalData->ds_loginSiteOwner);
    setEmployeeLookup({ DBLookupComboboxEh2 }, dm_GlobalData->ds_employee);
    fillFromHost({ DBComboBoxEh4 }, QStringLiteral("Class"), QStringLiteral("CLASS_NAME"));
    DBDateTimeEditEh1->setText(dateToText(Clock::today()) + u" 00:00:00");
    DBDateTimeEditEh2->setText(dateToText(Clock::today()) + u" 23:59:59");
    DBLookupComboboxEh1->setText(GlobalValueAddr(QStringLiteral("site")));
}

void ManStatistics::Button1Click()
{
    const QueryRun run(this);
    if (DBLookupComboboxEh1->text().isEmpty()) {
        refuse(QStringLiteral("详细：扫描站点必须选择!"), DBLookupComboboxEh1);
        return;
    }
    if (CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), 31, true))
        return;
    FWhere = u' ' + whereBetween(u"a.scan_date", DBDateTimeEditEh1, DBDateTimeEditEh2) + u" and a.scan_site='" + DBLookupComboboxEh1->text()
        + u'\'' + unlessEmpty(u" and a.PRE_OR_NEXT_STATION='", DBLookupComboboxEh5) + unlessEmpty(u" and a.scan_man='", DBLookupComboboxEh2)
        + unlessAll(u" and a.class='", DBComboBoxEh4);
    openStatement(cds, statistics());
}

QString ManStatistics::asInSummary(QStringView column) const
{
    const QString value = summaryText(column);
    return value.isEmpty() ? QString(u" and a." + column + u" is null ") : QString(u" and a." + column + u"='" + value + u'\'');
}
