#include "client/main_window.h"

#include "client/connections.h"
#include "client/export/screen_conditions.h"
#include "client/export/table_export.h"
#include "client/icons.h"
#include "client/screen_list.h"
#include "client/start_page.h"
#include "client/status_line.h"
#include "client/window_tabs.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_commands.h"
#include "platform/report/print_db_grid.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/plugin_interface.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QStandardPaths>
#include <QToolBar>
#include <QVBoxLayout>

using namespace client;
using namespace platform;

namespace client {
namespace {

/// An empty result can be exported, but not one that was never asked for.
void requireRows(const TDBGridEh &grid)
{
    if (!grid.dataSet() || !grid.dataSet()->active())
        throw Exception(QStringLiteral("没有可导出的数据，请先查询！"));
}

QString summaryRowOf(const TDBGridEh &grid)
{
    return grid.dataSet() ? grid.dataSet()->property(published_by_screen::summaryRow).toString() : QString();
}

} // namespace

/// One command of the menus.
struct MainWindow::Command {
    enum Needs { Nothing, Form, Query, Grid };
    QStringView menu;
    QStringView text; ///< empty: a separator
    QStringView shortcuts; ///< joined with blanks; the first one stands in the menu
    const char *icon; ///< on the tool bar too, when there is one
    Needs needs;
    void (*run)(MainWindow *window);

    /// A command of the grid that is in front.
    template <GridCommandId id>
    static Command ofGrid(const char *icon = nullptr)
    {
        const GridCommand &command = gridCommand(id);
        return { u"操作(&O)", command.text, command.shortcuts, icon, Grid,
            [](MainWindow *window) { gridCommand(id).run(*window->m_grid); } };
    }
};

const QList<MainWindow::Command> &MainWindow::commands()
{
    static const QList<Command> rows {
        { u"操作(&O)", u"查询", u"F9 F5 Ctrl+Return Ctrl+Enter", "query", Command::Query, [](MainWindow *window) { window->query(); } },
        { u"操作(&O)", u"导出…", u"Ctrl+E", "export", Command::Grid, [](MainWindow *window) { window->exportAsking(); } },
        { u"操作(&O)", u"打印…", u"Ctrl+P", "print", Command::Grid, [](MainWindow *window) { window->print(); } },
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        Command::ofGrid<GridCommandId::Find>("find"),
        Command::ofGrid<GridCommandId::FindNext>(),
        Command::ofGrid<GridCommandId::FindPrevious>(),
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        Command::ofGrid<GridCommandId::Copy>("copy"),
        Command::ofGrid<GridCommandId::CopyWithTitles>(),
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        { u"操作(&O)", u"退出", u"Alt+F4", nullptr, Command::Nothing, [](MainWindow *window) { window->close(); } },
        { u"窗口(&W)", u"层叠", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->cascadeSubWindows(); } },
        { u"窗口(&W)", u"平铺", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->tileSubWindows(); } },
        { u"窗口(&W)", u"下一个窗口", u"Ctrl+F6", nullptr, Command::Form,
            [](MainWindow *window) { window->mdiArea()->activateNextSubWindow(); } },
        { u"窗口(&W)", u"关闭窗口", u"Ctrl+F4 Ctrl+W", nullptr, Command::Form,
            [](MainWindow *window) { window->activeForm()->parentWidget()->close(); } },
        { u"窗口(&W)", u"全部关闭", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->closeAllSubWindows(); } },
        { u"帮助(&H)", u"快捷键", u"F1", nullptr, Command::Nothing, [](MainWindow *window) { window->showShortcuts(); } },
        { u"帮助(&H)", u"关于", u"", nullptr, Command::Nothing, [](MainWindow *window) { window->showAbout(); } },
    };
    return rows;
}

void MainWindow::createScreenMenus()
{
    for (const ScreenGroup &group : screenGroups) {
        QMenu *menu = menuBar()->addMenu(group.menu.toString());
        for (const ScreenItem &screen : group.screens) {
            handle(menu->addAction(screen.caption.toString()), &QAction::triggered, this,
                [this, name = screen.name + menuRights] { openScreen(name); });
        }
    }
}

void MainWindow::createCommands()
{
    auto *toolBar = addToolBar(QStringLiteral("工具栏"));
    toolBar->setMovable(false);
    toolBar->setContextMenuPolicy(Qt::PreventContextMenu);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QMenu *menu = nullptr;
    for (const Command &command : commands()) {
        if (!menu || menu->title() != command.menu)
            menu = menuBar()->addMenu(command.menu.toString());
        if (command.text.isEmpty()) {
            menu->addSeparator();
            continue;
        }
        QAction *action = createAction(command);
        menu->addAction(action);
        if (command.icon)
            toolBar->addAction(action);
        if (command.menu.startsWith(u"窗口"))
            m_windowMenu = menu;
    }
    handle(m_windowMenu, &QMenu::aboutToShow, this, &MainWindow::listWindows);
}

QAction *MainWindow::createAction(const Command &command)
{
    auto *action = new QAction(command.text.toString(), this);
    QList<QKeySequence> shortcuts;
    for (const QStringView shortcut : command.shortcuts.split(u' ', Qt::SkipEmptyParts))
        shortcuts.append(QKeySequence(shortcut.toString()));
    action->setShortcuts(shortcuts);
    if (!shortcuts.isEmpty())
        action->setToolTip(QString(command.text.toString()).remove(u'…') + QStringLiteral(" (%1)").arg(shortcuts.first().toString()));
    if (command.icon)
        action->setIcon(commandIcon(command.icon));
    if (command.run)
        handle(action, &QAction::triggered, this, [this, run = command.run] { run(this); });
    m_actions.append({ action, &command });
    return action;
}

void MainWindow::createWindowTabs()
{
    m_tabs = new WindowTabs;
    m_tabStrip = new QToolBar(QStringLiteral("窗口"));
    m_tabStrip->setMovable(false);
    m_tabStrip->setContextMenuPolicy(Qt::PreventContextMenu);
    m_tabStrip->addWidget(m_tabs);
    addToolBarBreak();
    addToolBar(m_tabStrip);
    handle(m_tabs, &WindowTabs::chosen, this, [](TForm *form) { form->showForm(); });
    handle(m_tabs, &WindowTabs::closeWanted, this, [](const TForm *form) { form->parentWidget()->close(); });
}

void MainWindow::createStartPage()
{
    m_startPage = new StartPage;
    auto *layout = new QVBoxLayout(mdiArea()->viewport());
    layout->addWidget(m_startPage);
    handle(m_startPage, &StartPage::wanted, this, [this](const QString &screen) { openScreen(screen + menuRights); });
}

/// The toolkit gives the system menu of every child window the shortcuts of the close command; two owners of a key get nothing.
void MainWindow::claimShortcuts()
{
    for (const QMdiSubWindow *window : mdiArea()->subWindowList()) {
        for (QAction *action : window->systemMenu()->actions())
            action->setShortcuts(QList<QKeySequence>());
    }
}

void MainWindow::listWindows()
{
    qDeleteAll(m_windowActions);
    m_windowActions.clear();
    if (!forms().isEmpty())
        m_windowActions.append(m_windowMenu->addSeparator());
    for (TForm *form : forms()) {
        QAction *action = m_windowMenu->addAction(form->caption());
        action->setCheckable(true);
        action->setChecked(form == activeForm());
        handle(action, &QAction::triggered, form, [form] { form->showForm(); });
        m_windowActions.append(action);
    }
}

void MainWindow::updateCommands()
{
    const bool has[] = { true, activeForm() != nullptr, queryButton() != nullptr, m_grid != nullptr };
    for (const auto &[action, command] : std::as_const(m_actions))
        action->setEnabled(has[command->needs]);
    claimShortcuts();
    if (const auto *button = qobject_cast<const QAbstractButton *>(queryButton()))
        m_asked.watch(activeForm(), button);
    m_startPage->setVisible(forms().isEmpty());
    m_tabs->showForms(forms(), activeForm());
    m_tabStrip->setVisible(forms().size() > 1);
    m_status->showRights(activeForm());
    showRows();
    m_status->showSelection(m_grid);
}

void MainWindow::query()
{
    auto *button = qobject_cast<QAbstractButton *>(queryButton());
    if (!button)
        throw Exception(QStringLiteral("当前没有可以查询的窗口，请先从菜单打开一个。"));
    button->click();
}

void MainWindow::print()
{
    if (!m_grid)
        throw Exception(QStringLiteral("没有可以打印的表格，请先打开一个查询窗口。"));
    const auto *frame = dynamic_cast<TComponentOwner *>(ownerOf(m_grid));
    TPrintDBGridEh plain;
    plain.setDBGridEh(m_grid);
    TPrintDBGridEh *printer = &plain;
    for (QObject *component : frame ? frame->components() : QList<QObject *>()) {
        auto *own = qobject_cast<TPrintDBGridEh *>(component);
        if (own && own->dbGridEh() == m_grid)
            printer = own;
    }
    if (printer->title().isEmpty())
        printer->setTitle(activeForm()->caption());
    const QString summaryRow = summaryRowOf(*m_grid);
    printer->setNotes(summaryRow.isEmpty() ? QStringList() : QStringList(u"汇总行：" + summaryRow));
    printer->preview(this);
}

void MainWindow::exportAsking()
{
    requireRows(*m_grid);
    if (m_exportDirectory.isEmpty())
        m_exportDirectory = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QFileDialog dialog(this, QStringLiteral("导出"), m_exportDirectory, exportFilters().join(QStringLiteral(";;")));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto useFilter
        = [&dialog](const QString &filter) { dialog.setDefaultSuffix(chosenTarget(QStringLiteral("*"), filter).fileName.mid(2)); };
    handle(&dialog, &QFileDialog::filterSelected, &dialog, useFilter);
    dialog.selectNameFilter(m_exportFilter.isEmpty() ? exportFilters().first() : m_exportFilter);
    useFilter(dialog.selectedNameFilter());
    dialog.selectFile(activeForm()->caption() + Clock::now().toString(u" yyyy-MM-dd HHmm"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_exportFilter = dialog.selectedNameFilter();
    const ExportTarget target = chosenTarget(dialog.selectedFiles().first(), m_exportFilter);
    m_exportDirectory = QFileInfo(target.fileName).absolutePath();
    exportTo(*m_grid, target);
}

int MainWindow::exportTo(const TDBGridEh &grid, const ExportTarget &target)
{
    requireRows(grid);
    QList<ExportNote> notes = m_asked.of(grid);
    if (const QString summaryRow = summaryRowOf(grid); !summaryRow.isEmpty())
        notes.append({ QStringLiteral("汇总行"), summaryRow });
    notes.append({ { QStringLiteral("导出网点"), m_options.loginSite }, { QStringLiteral("导出人"), m_data.employeeName() },
        { QStringLiteral("导出时间"), dateTimeToText(serverTime()) } });
    const int rows = exportGrid(grid, target, screenTitle(grid), notes);
    m_status->showMessage(
        QStringLiteral("已导出 %1 行到 %2").arg(rows).arg(QDir::toNativeSeparators(target.fileName)), messageMilliseconds);
    return rows;
}

void MainWindow::showShortcuts()
{
    const auto named = [](QStringView text) { return text.toString().remove(u'…'); };
    const auto readable = [](QStringView shortcuts) {
        QString keys = shortcuts.toString().replace(u' ', u'、');
        return keys.replace(QStringLiteral("Return"), QStringLiteral("回车")).replace(QStringLiteral("Space"), QStringLiteral("空格"));
    };
    QStringList lines;
    QSet<QStringView> listed;
    for (const Command &command : commands()) {
        if (!command.shortcuts.isEmpty())
            lines.append(named(command.text) + u'：' + readable(command.shortcuts));
        listed.insert(command.text);
    }
    QStringList inGrid;
    for (const GridCommand &command : gridCommands()) {
        if (!listed.contains(command.text))
            inGrid.append(readable(command.shortcuts) + u' ' + named(command.text));
    }
    lines << QStringLiteral("条件栏：回车到下一栏，F4 打开列表") << u"表格：" + inGrid.join(u'，') << QStringLiteral("查询时：Esc 取消");
    Application->messageBox(lines.join(u'\n'), QStringLiteral("快捷键"), mbOk);
}

void MainWindow::showAbout()
{
    Application->messageBox(QStringLiteral("%1\n版本 %2\n数据库 %3")
                                .arg(QApplication::applicationDisplayName(), QApplication::applicationVersion(), m_connections->place()),
        QStringLiteral("关于"), mbOk);
}

} // namespace client
