#include "client/main_window.h"

#include "client/connections.h"
#include "client/help_window.h"
#include "client/result_window.h"
#include "client/screen_list.h"
#include "client/start_desk.h"
#include "client/status_line.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"

#include <QAction>
#include <QMenu>

#include <memory>

using namespace platform;

// What the window remembers and explains: conditions, lists of waybill numbers, the start page and the help.

namespace client {

void MainWindow::rememberConditions()
{
    m_memory = std::make_unique<ConditionMemory>(conditionFolder(Application->settingsDirectory(), m_data.employeeName(), m_login.site));
    handle(m_memory.get(), &ConditionMemory::said, this, [this](const QString &text) { m_status->showMessage(text, messageMilliseconds); });
    handle(&m_asked, &AskedConditions::answered, this, [this](TForm *screen) { m_memory->keepLast(*screen); });
}

void MainWindow::watchLists()
{
    m_bills = std::make_unique<BillLists>(m_data.value(u"MainBill"));
    handle(m_bills.get(), &BillLists::said, this, [this](const QString &text) { m_status->showMessage(text, messageMilliseconds); });
    handle(m_bills.get(), &BillLists::joined, this, &MainWindow::showJoined);
    handle(&m_asked, &AskedConditions::answered, this, [this](TForm *screen) {
        m_bills->showAnswer(screen, m_grid ? m_grid->dataSet() : nullptr);
        showRows(); // its time is known only now
    });
}

void MainWindow::showJoined(TForm *screen, packet::PacketPtr rows, int batches)
{
    if (!m_grid)
        return;
    const QString caption = QStringLiteral("%1（%2 批合并）").arg(screen->caption()).arg(batches);
    auto joined = std::make_unique<ResultWindow>(Application, QStringLiteral("joinedResult"), caption,
        QStringLiteral("单号列表分 %1 批查询，结果合并在这里；合并于 %2。").arg(batches).arg(dateTimeToText(serverTime())));
    joined->showColumns(*m_grid);
    joined->cds->setData(std::move(rows));
    m_asked.adopt(*m_grid, joined->cds);
    joined.release()->showForm();
}

void MainWindow::listConditions()
{
    qDeleteAll(m_conditionActions);
    m_conditionActions.clear();
    if (!queryButton())
        return;
    const QList<QAction *> named = m_memory->addNamed(m_conditionMenu, activeForm());
    if (!named.isEmpty())
        m_conditionActions.append(m_conditionMenu->insertSeparator(named.first()));
    m_conditionActions += named;
}

void MainWindow::fillStartPage()
{
    // A script that opens a client does not want statements that it did not ask for.
    const auto counting = m_options.automation ? StartDesk::Counting::Never : StartDesk::Counting::Offered;
    m_startDesk = std::make_unique<StartDesk>(m_startPage, m_memory->folder(), m_connections->host(), m_login, counting);
    handle(m_startDesk.get(), &StartDesk::said, this, [this](const QString &text) { m_status->showMessage(text, messageMilliseconds); });
    handle(m_startDesk.get(), &StartDesk::countWanted, this, &MainWindow::openCounted);
}

void MainWindow::pasteBills()
{
    if (!m_bills->paste(activeForm()))
        m_status->showMessage(QStringLiteral("这个窗口没有单号列表。"), messageMilliseconds);
}

void MainWindow::openCounted(const DayCount &count)
{
    openScreen(count.screen + m_login.rightsTo(count.screen.toString()));
    TForm *screen = activeForm();
    if (!screen || screen->objectName() != count.screen)
        return;
    m_memory->putBack(*screen, { count.caption.toString(), Clock::now(), count.conditions });
}

void MainWindow::showHelp()
{
    if (!m_help)
        m_help = new HelpWindow(this);
    m_help->setKeys(keysAsPage());
    m_help->showPage(activeForm() ? activeForm()->objectName() : QString());
}

/// The keys as they are now, command by command.
QString MainWindow::keysAsPage() const
{
    QString page = QStringLiteral("# 快捷键\n\n| 命令 | 按键 |\n| --- | --- |\n");
    for (const Shortcut &shortcut : shortcuts()) {
        if (!shortcut.keys.isEmpty())
            page += u"| " + QString(shortcut.command).remove(u'…') + u" | " + shortcut.keysText() + u" |\n";
    }
    return page;
}

} // namespace client
