#include "client/main_window.h"

#include "client/export/screen_conditions.h"
#include "client/result_comparison.h"
#include "client/result_window.h"
#include "client/status_line.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"

#include <QMenu>

#include <memory>

using namespace platform;

namespace client {

void MainWindow::pinResult()
{
    TForm *screen = activeForm();
    if (qobject_cast<const ResultWindow *>(screen))
        throw Exception(QStringLiteral("这里的结果已经固定，不会再变。"));
    QStringList conditions;
    for (const ExportNote &note : m_asked.of(*m_grid)) {
        if (!note.value.isEmpty())
            conditions.append(note.caption + u'=' + note.value);
    }
    auto pinned
        = std::make_unique<PinnedResult>(Application, *m_grid, screenTitle(*m_grid), conditions.join(QStringLiteral("，")), serverTime());
    m_asked.adopt(*m_grid, pinned->cds);
    m_status->showMessage(QStringLiteral("已固定为窗口“%1”").arg(pinned->caption()), messageMilliseconds);
    pinned.release()->showForm();
    screen->showForm(); // work goes on where it was
}

/// With the only result that fits, or with the one that the person chooses.
void MainWindow::compareResult()
{
    const auto *shown = qobject_cast<const PinnedResult *>(activeForm());
    const QString source = shown ? shown->source() : screenTitle(*m_grid);
    QList<const PinnedResult *> candidates;
    for (const TForm *form : forms()) {
        const auto *pinned = qobject_cast<const PinnedResult *>(form);
        if (pinned && pinned != shown && pinned->source() == source)
            candidates.append(pinned);
    }
    if (candidates.isEmpty())
        throw Exception(QStringLiteral("没有可以比较的结果：请先用“固定结果”留下“%1”的一次结果，再查询一次。").arg(source));
    if (candidates.size() == 1)
        return compareWith(*candidates.first());
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const PinnedResult *pinned : std::as_const(candidates))
        handle(menu->addAction(pinned->caption()), &QAction::triggered, pinned, [this, pinned] { compareWith(*pinned); });
    menu->popup(m_grid->mapToGlobal(QPoint(0, 0)));
}

void MainWindow::compareWith(const PinnedResult &pinned)
{
    if (!m_grid->dataSet() || !m_grid->dataSet()->active())
        throw Exception(QStringLiteral("没有可以比较的结果，请先查询。"));
    const auto *shown = qobject_cast<const PinnedResult *>(activeForm());
    const auto nameOf
        = [](const PinnedResult &result) -> QString { return result.time().toString(QStringLiteral("MM-dd HH:mm:ss")) + u" 的结果"; };
    const ComparedResult kept { *pinned.resultGrid, nameOf(pinned) };
    const ComparedResult current { *m_grid, shown ? nameOf(*shown) : QStringLiteral("现在的结果") };
    const bool isOlder = shown && shown->time() < pinned.time();
    ResultWindow *window = (isOlder ? compareResults(Application, current, kept) : compareResults(Application, kept, current)).release();
    window->showForm();
    window->resultGrid->fitColumns(); // a changed cell holds two values
}

} // namespace client
