#include "client/result_window.h"

#include "platform/grid/grid_colors.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/plain_text.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/published.h"

#include <QVBoxLayout>

using namespace platform;

namespace client {
namespace {

/// The order and the filter of a dataset, for a copy of its rows.
void takeOrder(TCustomClientDataSet &copy, const TCustomClientDataSet &original)
{
    for (const IndexDefinition &index : original.indexDefinitions())
        copy.addIndex(index);
    copy.setIndexName(original.indexName());
    copy.setFilter(original.filter());
    if (original.filtered())
        copy.setFiltered(true);
}

QList<Column> columnsOf(const TDBGridEh &grid)
{
    QList<Column> columns;
    for (int index = 0; index < grid.columnCount(); ++index)
        columns.append(grid.column(index));
    return columns;
}

} // namespace

ResultWindow::ResultWindow(TComponentOwner *owner, const QString &name, const QString &caption, const QString &description)
    : TForm(owner, name, caption)
{
    descriptionLabel->setTextFormat(Qt::PlainText);
    descriptionLabel->setText(description);
    descriptionLabel->setToolTip(plainTip(description));
    descriptionLabel->setWordWrap(true);
    descriptionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(descriptionLabel);
    auto *holder = new QWidget; // has the font that the grid is designed in
    auto *holderLayout = new QVBoxLayout(holder);
    holderLayout->setContentsMargins(0, 0, 0, 0);
    holderLayout->addWidget(resultGrid);
    layout->addWidget(holder, 1);

    cds->setReadOnly(true);
    DS->setDataSet(cds);
    resultGrid->setDataSource(DS);
    resultGrid->setSortLocal(true);
    resultGrid->onGetCellParams = [](int row, int, CellParameters &parameters) { parameters.background = rowStripe(row + 1); };
    resultGrid->onCellText = [](int row, int) { return QString::number(row + 1); };
}

void ResultWindow::showColumns(const TDBGridEh &original)
{
    resultGrid->parentWidget()->setFont(original.designedFont());
    resultGrid->setColumns(columnsOf(original));
    resultGrid->setFrozenColumns(original.frozenColumns());
    resultGrid->setFooterRowCount(original.footerRowCount());
}

void ResultWindow::FormActivate()
{
    notifyHost(this, hostFormActivated);
    const PublishedMethod resetSearch(Application->mainForm(), published_by_host::resetSearch);
    if (!resetSearch.isNull())
        resetSearch.call(resultGrid);
    resultGrid->setFocus();
}

void ResultWindow::FormClose(TCloseAction &action)
{
    notifyHost(this, hostFormClosed);
    action = TCloseAction::Free;
}

PinnedResult::PinnedResult(
    TComponentOwner *owner, const TDBGridEh &original, const QString &source, const QString &conditions, const QDateTime &time)
    : ResultWindow(owner, QStringLiteral("pinnedResult"), u"固定 " + time.toString(u"HH:mm:ss ") + source,
        QStringLiteral("%1，固定于 %2。%3").arg(source, dateTimeToText(time), conditions))
    , m_source(source)
    , m_time(time)
{
    const auto *rows = qobject_cast<const TCustomClientDataSet *>(original.dataSet());
    if (!rows || !rows->active())
        throw Exception(QStringLiteral("没有可以固定的结果，请先查询。"));
    cds->setData(rows->data());
    takeOrder(*cds, *rows);
    cds->setProperty(published_by_screen::summaryRow, rows->property(published_by_screen::summaryRow));
    showColumns(original);
}

} // namespace client
