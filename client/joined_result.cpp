#include "client/joined_result.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/published.h"

#include <QVBoxLayout>

using namespace platform;

namespace client {

JoinedResult::JoinedResult(const QString &caption, const TDBGridEh &like, packet::PacketPtr rows)
    : TForm(Application, QStringLiteral("frm_JoinedResult"), caption)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Grid);
    Grid->setFont(like.font());
    QList<Column> columns;
    for (int index = 0; index < like.columnCount(); ++index) {
        columns.append(like.column(index));
        columns.last().readOnly = true;
        columns.last().sortMark = SortMark::None;
        columns.last().sortKey = 0;
    }
    Grid->setColumns(columns);
    Grid->setFooterRowCount(like.footerRowCount());
    Grid->setFrozenColumns(like.frozenColumns());
    Grid->setSortLocal(true);
    Grid->onCellText = [](int row, int) { return QString::number(row + 1); };
    DS->setDataSet(cds);
    Grid->setDataSource(DS);
    cds->setReadOnly(true);
    cds->setData(std::move(rows));
}

void JoinedResult::FormActivate()
{
    notifyHost(this, hostFormActivated);
    PublishedMethod(Application->mainForm(), published_by_host::resetSearch).call(Grid);
}

void JoinedResult::FormClose(TCloseAction &action)
{
    notifyHost(this, hostFormClosed);
    action = TCloseAction::Free;
}

} // namespace client
