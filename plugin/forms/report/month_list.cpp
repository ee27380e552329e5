#include "plugin/forms/report/month_list.h"

#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/view/udm_Print.h"

#include <QScopeGuard>

using namespace platform;
using namespace plugin;

namespace plugin {

void MonthList::design(
    const QList<ConditionRow> &rows, const QList<ConditionRow> &buttons, const GridColumns &summary, const GridColumns &detail)
{
    arrange({ { range(u"扫描时间范围(31天以内)").lastMonth(), block(3, rows), block(1, buttons) } });
    placeLeft(InputList1);
    summaryAndDetail(
        { TabSheet1, u"汇总数据", DataView2, cdsSum, summary }, { TabSheet2, u"明细数据", DataView1, cds, detail, 1 }, QString());
}

LookupRow MonthList::siteRow(TDBLookupComboboxEh *scanSite)
{
    m_scanSite = scanSite;
    return row(u"扫描网点", scanSite).sites(dm_GlobalData->ds_loginSiteOwner).loginSite().completes();
}

LookupRow MonthList::manRow() { return row(u"扫描人", DBLookupComboboxEh2).employees().completes(); }

ListRow MonthList::goodsTypeRow() { return row(u"物品类别", DBComboBoxEh1).goodsTypes(); }

ListRow MonthList::fastTypeRow() { return row(u"快件类型", DBComboBoxEh2).fastTypes(); }

LookupRow MonthList::senderRow() { return row(u"寄件网点", DBLookupComboboxEh1).sites(dm_GlobalData->ds_site).completes(); }

LookupRow MonthList::destinationRow() { return row(u"目的网点", DBLookupComboboxEh4).sites(dm_GlobalData->ds_site).completes(); }

ListRow MonthList::shiftRow() { return row(u"班次", DBComboBoxEh4).shifts(); }

void MonthList::queryByList(const QString &bills)
{
    // The site is always the one that is logged in; the other conditions do not count.
    open(u"where a.bill_code in " + bills + u" and a.scan_site='" + GlobalValueAddr(QStringLiteral("site")) + u'\'', ByList);
}

void MonthList::queryByConditions()
{
    if (refuseEmpty(m_scanSite, u"扫描网点必须选择！") || refuseRange(31))
        return;
    open(whereInRange(u"a.scan_date") + u" and a.scan_site='" + m_scanSite->text() + u'\'' + conditions(), ByDate);
}

void MonthList::open(const QString &where, Selection selection)
{
    FWhereSql = where;
    cdsSum->setTag(selection);
    openStatement(cdsSum, summary(), selection);
}

void MonthList::printDetail(const QString &reportFile)
{
    const QString sorted = cds->indexName();
    cds->setIndexName({});
    const auto restore = qScopeGuard([&] { guarded([&] { cds->setIndexName(sorted); }); });
    dm_Print->PrintReport(cds, reportFile, [this] {
        if (report::ReportObject *range = dm_Print->frReport->findObject(u"Memo2"))
            range->setText(report::ReportObject::literal(u"扫描时间：" + DBDateTimeEditEh1->text() + u" 至 " + DBDateTimeEditEh2->text()));
    });
}

} // namespace plugin
