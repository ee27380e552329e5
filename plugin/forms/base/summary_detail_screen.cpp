#include "plugin/forms/base/summary_detail_screen.h"

#include "platform/toolkit/plugin_interface.h"
#include "plugin/util/guest_query.h"

#include <optional>

using namespace platform;

namespace plugin {

namespace {

bool hasRows(const TDataSet *dataSet) { return dataSet->active() && !dataSet->isEmpty(); }

struct SummaryRow {
    QString text; ///< "片区=北京，班次=夜班，票数=2"
    std::optional<int> count; ///< of the waybills, where the row has one number of them
};

bool isAmount(const Column &column) { return !column.footers.isEmpty() && column.footers.last().kind == FooterKind::Sum; }

bool isCount(const Column &column) { return isAmount(column) && column.caption.endsWith(u"票数"); }

/// The amount that a row stands for: its number of waybills, or the one of several amounts that is current.
int amountOf(const TDBGridEh &grid)
{
    QList<int> counts;
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (grid.column(index).visible && isCount(grid.column(index)))
            counts.append(index);
    }
    if (counts.size() == 1)
        return counts.first();
    const int current = grid.currentColumn();
    return current >= 0 && isAmount(grid.column(current)) ? current : -1;
}

/// The current row of a summary in words: what it is grouped by, and its amount.
SummaryRow describeRow(const TDBGridEh &grid)
{
    const int amount = amountOf(grid);
    QStringList parts;
    SummaryRow row;
    for (int index = 0; index < grid.columnCount(); ++index) {
        const Column &column = grid.column(index);
        const TField *field = grid.dataSet()->findField(column.fieldName);
        if (!field || (index != amount && (!column.visible || isAmount(column))))
            continue;
        parts.append(column.caption + u'=' + (field->isNull() ? QStringLiteral("（空）") : field->asString()));
        if (index == amount && isCount(column))
            row.count = int(field->asDecimal().toDouble());
    }
    row.text = parts.join(u'，');
    return row;
}

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
    describeDetail();
}

/// The detail outlives the summary row that it belongs to, on paper and in files too: it is told in words with the rows.
void SummaryDetailScreen::describeDetail()
{
    const SummaryRow row = describeRow(*m_summaryView->DataViewGrid);
    const bool differs = row.count && *row.count != m_detail->recordCount();
    const QString text = row.text + (differs ? QStringLiteral("；明细 %1 行，与汇总不符").arg(m_detail->recordCount()) : QString());
    m_detail->setProperty(published_by_screen::summaryRow, text);
    m_detailView->describeRows(u"汇总行：" + text, differs ? Attention::Wanted : Attention::None);
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

} // namespace plugin
