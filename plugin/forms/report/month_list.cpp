#include "plugin/forms/report/month_list.h"

#include "platform/toolkit/clock.h"
#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/conditions.h"
#include "plugin/view/udm_Print.h"

#include <QScopeGuard>

void MonthList::design(
    const QList<ConditionRow> &rows, const QList<ConditionRow> &buttons, const GridColumns &summary, const GridColumns &detail)
{
    arrange({ { range(GroupBox1, u"扫描时间范围(31天以内)", DBDateTimeEditEh1, DBDateTimeEditEh2), block(3, rows), block(1, buttons) } });
    placeLeft(InputList1);
    summaryAndDetail(
        { TabSheet1, u"汇总数据", DataView2, cdsSum, summary }, { TabSheet2, u"明细数据", DataView1, cds, detail, 1 }, QString());
    completeOnExit({ DBLookupComboboxEh1, DBLookupComboboxEh2, DBLookupComboboxEh3, DBLookupComboboxEh4, DBLookupComboboxEh5 });
}

void MonthList::FormCreate(TDBLookupComboboxEh *scanSite)
{
    Tfrm_BasicBoot::FormCreate();
    m_scanSite = scanSite;
    setPreviousMonth();
    fillScanLists(DBComboBoxEh1, DBComboBoxEh2, DBComboBoxEh4);
    setSiteLookup({ DBLookupComboboxEh1, DBLookupComboboxEh4 }, dm_GlobalData->ds_site);
    setEmployeeLookup({ DBLookupComboboxEh2 }, dm_GlobalData->ds_employee);
    setSiteLookup({ scanSite }, dm_GlobalData->ds_loginSiteOwner);
    scanSite->setText(GlobalValueAddr(QStringLiteral("site")));
}

void MonthList::setPreviousMonth()
{
    const QDate today = Clock::today();
    const QDate thisMonth(today.year(), today.month(), 1);
    DBDateTimeEditEh1->setDateTimeText(dateToText(thisMonth.addMonths(-1)) + u" 00:00:00");
    DBDateTimeEditEh2->setDateTimeText(dateToText(thisMonth.addDays(-1)) + u" 23:59:59");
}

void MonthList::Button1Click()
{
    const QueryRun run(this);
    if (InputList1->CheckBox1->isChecked()) {
        QString bills;
        InputList1->GetBillList(bills);
        // The site is always the one that is logged in; the other conditions do not count.
        if (!bills.isEmpty())
            open(u"where a.bill_code in " + bills + u" and a.scan_site='" + GlobalValueAddr(QStringLiteral("site")) + u'\'', ByList);
        return;
    }
    if (m_scanSite->text().isEmpty()) {
        refuse(QStringLiteral("详细：扫描网点必须选择！"), m_scanSite);
        return;
    }
    if (CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), 31, true))
        return;
    open(whereBetween(u"a.scan_date", DBDateTimeEditEh1, DBDateTimeEditEh2) + u" and a.scan_site='" + m_scanSite->text() + u'\''
            + conditions(),
        ByDate);
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
        if (ReportObject *range = dm_Print->frReport->findObject(u"Memo2"))
            range->setText(ReportObject::literal(u"扫描时间：" + DBDateTimeEditEh1->text() + u" 至 " + DBDateTimeEditEh2->text()));
    });
}
