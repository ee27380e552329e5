#include "plugin/forms/base/summary_detail_screen.h"

#include "plugin/util/guest_query.h"

namespace {
bool hasRows(const TDataSet *dataSet) { return dataSet->active() && !dataSet->isEmpty(); }
} // namespace

void SummaryDetailScreen::summaryAndDetail(const ResultPage &summary, const ResultPage &detail, const QString &sentinel)
{
    for (const ResultPage &shown : { summary, detail })
        page(shown.sheet, shown.caption, shown.view, shown.dataSet, shown.columns, shown.frozen);
    m_summary = summary.dataSet;
    m_summaryView = summary.view;
    m_detail = detail.dataSet;
    m_detailSheet = detail.sheet;
    m_detailView = detail.view;
    handle(m_summary, &TDataSet::afterOpen, this, [this, sentinel] { FDetailKey = sentinel; });
    handle(m_detailSheet, &TTabSheet::shown, this, &SummaryDetailScreen::loadDetail);
    handle(summary.view->DataViewGrid, &TDBGridEh::cellDoubleClicked, this, &SummaryDetailScreen::showDetailSheet);
}

QString SummaryDetailScreen::selectedField() const
{
    const TDBGridEh *grid = m_summaryView->DataViewGrid;
    return grid->currentColumn() < 0 ? QString() : grid->column(grid->currentColumn()).fieldName;
}

void SummaryDetailScreen::showDetailSheet()
{
    if (hasRows(m_summary))
        PageControl1->setActivePage(m_detailSheet);
}

void SummaryDetailScreen::loadDetail()
{
    if (!hasRows(m_summary))
        return;
    const Detail wanted = detail();
    if (wanted.key == FDetailKey)
        return;
    openStatement(m_detail, wanted.statement);
    FDetailKey = wanted.remembered;
}

void SummaryDetailScreen::openGuestFromDetail(std::function<QList<TCustomRemoteServer *>()> connections)
{
    handle(m_detailView->DataViewGrid, &TDBGridEh::cellDoubleClicked, this,
        [this, connections = std::move(connections)] { openGuest(connections()); });
}

void SummaryDetailScreen::openGuest(const QList<TCustomRemoteServer *> &connections) const
{
    if (hasRows(m_detail))
        ShowQuestQuery(m_detail->fieldByName(u"bill_code")->asString(), connections);
}
