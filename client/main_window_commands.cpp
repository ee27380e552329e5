#include "client/main_window.h"

#include "client/appearance_menu.h"
#include "client/connections.h"
#include "client/export/printed_notes.h"
#include "client/export/screen_conditions.h"
#include "client/export/table_export.h"
#include "client/icons.h"
#include "client/navigation.h"
#include "client/password_dialog.h"
#include "client/screen_list.h"
#include "client/start_desk.h"
#include "client/start_page.h"
#include "client/status_line.h"
#include "client/window_tabs.h"
#include "platform/files/save_dialog.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_commands.h"
#include "platform/grid/grid_zoom.h"
#include "platform/report/chart_window.h"
#include "platform/report/print_db_grid.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/user_settings.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QToolBar>
#include <QVBoxLayout>

using namespace client;
using namespace platform;

namespace client {
namespace {

const QString exportFilterKey = QStringLiteral("export/filter");

/// An empty result can be exported, but not one that was never asked for.
void requireRows(const TDBGridEh &grid)
{
    if (!grid.dataSet() || !grid.dataSet()->active())
        throw Exception(QStringLiteral("没有可导出的数据，请先查询！"));
}

/// What part of the answer to its conditions a grid shows: the rows of one summary row.
QList<ExportNote> partShownBy(const TDBGridEh &grid)
{
    const QString row = grid.dataSet() ? grid.dataSet()->property(published_by_screen::summaryRow).toString() : QString();
    return row.isEmpty() ? QList<ExportNote>() : QList<ExportNote> { { QStringLiteral("汇总行"), row } };
}

} // namespace

/// One command of the menus.
struct MainWindow::Command {
    enum Needs { Nothing, Form, Query, Grid, Account };
    QStringView menu; ///< empty: in none
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
    template <int number>
    static Command ofPage(QStringView text, QStringView shortcut)
    {
        return { u"", text, shortcut, nullptr, Form, [](MainWindow *window) { window->showResultPage(number); } };
    }
};

const QList<MainWindow::Command> &MainWindow::commands()
{
    static const QList<Command> rows {
        { u"操作(&O)", u"查询", u"F9 F5 Ctrl+Return Ctrl+Enter", "query", Command::Query, [](MainWindow *window) { window->query(); } },
        { u"操作(&O)", u"导出", u"Ctrl+E", "export", Command::Grid, [](MainWindow *window) { window->exportAgain(); } },
        { u"操作(&O)", u"导出到…", u"Ctrl+Shift+E", nullptr, Command::Grid, [](MainWindow *window) { window->exportAsking(); } },
        { u"操作(&O)", u"打印…", u"Ctrl+P", "print", Command::Grid, [](MainWindow *window) { window->print(); } },
        { u"操作(&O)", u"直接打印", u"Ctrl+Shift+P", nullptr, Command::Grid, [](MainWindow *window) { window->print(Print::AtOnce); } },
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        Command::ofGrid<GridCommandId::Find>("find"),
        Command::ofGrid<GridCommandId::FindNext>(),
        Command::ofGrid<GridCommandId::FindPrevious>(),
        Command::ofGrid<GridCommandId::FilterText>(),
        Command::ofGrid<GridCommandId::FilterByValue>(),
        Command::ofGrid<GridCommandId::FilterOutValue>(),
        Command::ofGrid<GridCommandId::ClearFilter>(),
        { u"操作(&O)", u"图表…", u"Ctrl+Shift+G", nullptr, Command::Grid,
            [](MainWindow *window) { report::ChartWindow::showFor(*window->m_grid, screenTitle(*window->m_grid)); } },
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        Command::ofGrid<GridCommandId::Copy>("copy"),
        Command::ofGrid<GridCommandId::CopyWithTitles>(),
        { u"操作(&O)", u"粘贴单号到列表", u"Ctrl+V", nullptr, Command::Query, [](MainWindow *window) { window->pasteBills(); } },
        Command::ofGrid<GridCommandId::Sort>(),
        Command::ofGrid<GridCommandId::SortAlso>(),
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        { u"操作(&O)", u"固定结果", u"Ctrl+D", nullptr, Command::Grid, [](MainWindow *window) { window->pinResult(); } },
        { u"操作(&O)", u"与固定结果比较…", u"Ctrl+Shift+D", nullptr, Command::Grid, [](MainWindow *window) { window->compareResult(); } },
        { u"操作(&O)", u"", u"", nullptr, Command::Nothing, nullptr },
        { u"操作(&O)", u"修改密码…", u"", nullptr, Command::Account, [](MainWindow *window) { window->changePassword(); } },
        { u"操作(&O)", u"退出", u"Alt+F4", nullptr, Command::Nothing, [](MainWindow *window) { window->close(); } },
        { u"条件(&T)", u"上次条件", u"Ctrl+L", nullptr, Command::Query,
            [](MainWindow *window) { window->m_memory->putBackLast(*window->activeForm()); } },
        { u"条件(&T)", u"保存为…", u"", nullptr, Command::Query,
            [](MainWindow *window) { window->m_memory->saveAs(*window->activeForm()); } },
        { u"条件(&T)", u"管理…", u"", nullptr, Command::Query,
            [](MainWindow *window) { window->m_memory->manage(*window->activeForm()); } },
        { u"转到(&G)", u"条件与表格", u"F6", nullptr, Command::Form,
            [](MainWindow *window) { switchFocus(*window->activeForm(), window->m_grid); } },
        { u"转到(&G)", u"明细", u"F8 Alt+Return Alt+Enter", nullptr, Command::Grid, [](MainWindow *window) { window->openCell(); } },
        { u"转到(&G)", u"返回", u"Alt+Left", nullptr, Command::Form, [](MainWindow *window) { window->goBack(); } },
        { u"转到(&G)", u"运单跟踪", u"Ctrl+G", nullptr, Command::Nothing, [](MainWindow *window) { window->enterWaybillBox(); } },
        { u"转到(&G)", trackCommand, u"Ctrl+T", nullptr, Command::Grid,
            [](MainWindow *window) { window->openTracks(waybillsOf(*window->m_grid)); } },
        { u"转到(&G)", u"下一页结果", u"Ctrl+PgDown", nullptr, Command::Form, [](MainWindow *window) { window->turnResultPage(1); } },
        { u"转到(&G)", u"上一页结果", u"Ctrl+PgUp", nullptr, Command::Form, [](MainWindow *window) { window->turnResultPage(-1); } },
        Command::ofPage<1>(u"第 1 页结果", u"Ctrl+1"),
        Command::ofPage<2>(u"第 2 页结果", u"Ctrl+2"),
        Command::ofPage<3>(u"第 3 页结果", u"Ctrl+3"),
        Command::ofPage<4>(u"第 4 页结果", u"Ctrl+4"),
        Command::ofPage<5>(u"第 5 页结果", u"Ctrl+5"),
        Command::ofPage<6>(u"第 6 页结果", u"Ctrl+6"),
        Command::ofPage<7>(u"第 7 页结果", u"Ctrl+7"),
        Command::ofPage<8>(u"第 8 页结果", u"Ctrl+8"),
        Command::ofPage<9>(u"第 9 页结果", u"Ctrl+9"),
        { u"显示(&V)", u"放大表格", u"Ctrl+= Ctrl++", nullptr, Command::Nothing, [](MainWindow *) { stepGridZoom(1); } },
        { u"显示(&V)", u"缩小表格", u"Ctrl+-", nullptr, Command::Nothing, [](MainWindow *) { stepGridZoom(-1); } },
        { u"显示(&V)", u"原始大小", u"Ctrl+0", nullptr, Command::Nothing, [](MainWindow *) { setGridZoom(100); } },
        { u"显示(&V)", u"收起或展开条件", u"Shift+F6", nullptr, Command::Form,
            [](MainWindow *window) { toggleConditions(*window->activeForm()); } },
        { u"窗口(&W)", u"层叠", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->cascadeSubWindows(); } },
        { u"窗口(&W)", u"平铺", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->tileSubWindows(); } },
        { u"窗口(&W)", u"下一个窗口", u"Ctrl+F6", nullptr, Command::Form,
            [](MainWindow *window) { window->mdiArea()->activateNextSubWindow(); } },
        { u"窗口(&W)", u"关闭窗口", u"Ctrl+F4 Ctrl+W", nullptr, Command::Form,
            [](MainWindow *window) { window->activeForm()->parentWidget()->close(); } },
        { u"窗口(&W)", u"全部关闭", u"", nullptr, Command::Form, [](MainWindow *window) { window->mdiArea()->closeAllSubWindows(); } },
        { u"帮助(&H)", u"帮助", u"F1", nullptr, Command::Nothing, [](MainWindow *window) { window->showHelp(); } },
        { u"帮助(&H)", u"快捷键", u"", nullptr, Command::Nothing, [](MainWindow *window) { window->showShortcuts(); } },
        { u"帮助(&H)", u"保存诊断信息…", u"", nullptr, Command::Nothing, [](MainWindow *window) { window->saveDiagnostics(); } },
        { u"帮助(&H)", u"关于", u"", nullptr, Command::Nothing, [](MainWindow *window) { window->showAbout(); } },
    };
    return rows;
}

QList<QKeySequence> MainWindow::designedKeys(const Command &command)
{
    QList<QKeySequence> keys;
    for (const QStringView shortcut : command.shortcuts.split(u' ', Qt::SkipEmptyParts))
        keys.append(QKeySequence(shortcut.toString()));
    return keys;
}

void MainWindow::createScreenMenus()
{
    for (const ScreenGroup &group : screenGroups) {
        QMenu *menu = nullptr;
        for (const ScreenItem &screen : group.screens) {
            const QString name = screen.name.toString();
            if (m_login.rightsTo(name).isEmpty())
                continue;
            if (!menu)
                menu = menuBar()->addMenu(group.menu.toString());
            handle(menu->addAction(screen.caption.toString()), &QAction::triggered, this,
                [this, name] { openScreen(name + m_login.rightsTo(name)); });
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
        if (command.menu.isEmpty()) {
            addAction(createAction(command));
            continue;
        }
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
        if (command.menu.startsWith(u"显示"))
            m_viewMenu = menu;
        if (command.menu.startsWith(u"条件"))
            m_conditionMenu = menu;
    }
    handle(m_conditionMenu, &QMenu::aboutToShow, this, &MainWindow::listConditions);
    addAppearanceMenus(m_viewMenu);
    QList<Shortcut> keys = shortcuts();
    takeKeptKeys(keys);
    useShortcuts(keys);
    handle(m_windowMenu, &QMenu::aboutToShow, this, &MainWindow::listWindows);
    m_waybillBox = new WaybillBox;
    toolBar->addSeparator();
    toolBar->addWidget(m_waybillBox);
    handle(m_waybillBox, &WaybillBox::wanted, this, &MainWindow::openBoxedTrack);
    handle(m_waybillBox, &WaybillBox::left, this, &MainWindow::enterRows);
}

QAction *MainWindow::createAction(const Command &command)
{
    auto *action = new QAction(command.text.toString(), this);
    action->setShortcuts(designedKeys(command));
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
    m_startPage = new StartPage(m_login);
    auto *layout = new QVBoxLayout(mdiArea()->viewport());
    layout->addWidget(m_startPage);
    handle(m_startPage, &StartPage::wanted, this, [this](const QString &screen) { openScreen(screen + m_login.rightsTo(screen)); });
    fillStartPage();
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
    const bool has[] = { true, activeForm() != nullptr, queryButton() != nullptr, m_grid != nullptr, m_connections->account().has_value() };
    for (const auto &[action, command] : std::as_const(m_actions))
        action->setEnabled(has[command->needs]);
    claimShortcuts();
    if (auto *button = qobject_cast<QAbstractButton *>(queryButton())) {
        m_asked.watch(activeForm(), button);
        m_bills->watch(activeForm(), button, m_grid && m_grid->columnIndex(u"bill_code") >= 0);
    }
    m_startPage->setVisible(forms().isEmpty());
    m_startDesk->setSeen(forms().isEmpty());
    m_tabs->showForms(forms(), activeForm());
    m_tabStrip->setVisible(forms().size() > 1);
    m_status->showRights(activeForm());
    showRows();
    m_status->showSelection(m_grid);
}

void MainWindow::print(Print way)
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
    QStringList notes { printedNotes(m_asked.of(*m_grid)), printedNotes(partShownBy(*m_grid)) };
    notes.removeAll(QString());
    printer->setNotes(notes);
    printer->pageFooter().left = QStringList({ m_login.site, m_data.employeeName(), dateTimeToText(serverTime()) }).join(u'　');
    way == Print::Preview ? printer->preview(this) : printer->print(this);
}

QString MainWindow::exportName() const { return files::datedName(activeForm()->caption()); }

void MainWindow::exportAsking()
{
    requireRows(*m_grid);
    const auto place
        = files::askWhereToSave(this, QStringLiteral("导出"), exportName(), exportFilters(), userSetting(exportFilterKey).toString());
    if (!place)
        return;
    keepUserSetting(exportFilterKey, place->filter);
    exportTo(*m_grid, chosenTarget(place->fileName, place->filter));
}

/// In the folder and the form that were chosen last, under a name that no file has.
void MainWindow::exportAgain()
{
    requireRows(*m_grid);
    const QString filter = userSetting(exportFilterKey).toString();
    if (filter.isEmpty())
        return exportAsking();
    const QString path = files::saveFolder() + u'/' + exportName();
    ExportTarget target = chosenTarget(path, filter);
    for (int number = 2; QFileInfo::exists(target.fileName); ++number)
        target = chosenTarget(QStringLiteral("%1 (%2)").arg(path).arg(number), filter);
    exportTo(*m_grid, target);
}

int MainWindow::exportTo(const TDBGridEh &grid, const ExportTarget &target)
{
    requireRows(grid);
    QList<ExportNote> notes = m_asked.of(grid) + partShownBy(grid);
    notes.append({ { QStringLiteral("导出网点"), m_login.site }, { QStringLiteral("导出人"), m_data.employeeName() },
        { QStringLiteral("导出时间"), dateTimeToText(serverTime()) } });
    const int rows = exportGrid(grid, target, screenTitle(grid), notes);
    QStringList words { QStringLiteral("已导出 %1 行").arg(rows), grid.dataSet()->filterNotice(), grid.dataSet()->truncationNotice() };
    words.removeAll(QString());
    m_status->showSavedFile(words.join(u'，'), target.fileName);
    return rows;
}

void MainWindow::changePassword()
{
    if (PasswordDialog(*m_connections, std::nullopt, this).exec() == QDialog::Accepted)
        m_status->showMessage(QStringLiteral("密码已更改"), messageMilliseconds);
}

void MainWindow::showAbout() { Application->messageBox(programDetails(m_options, m_connections->place()), QStringLiteral("关于"), mbOk); }

void MainWindow::saveDiagnostics()
{
    const auto place = files::askWhereToSave(
        this, QStringLiteral("保存诊断信息"), files::datedName(QStringLiteral("诊断信息")), { QStringLiteral("文本文件 (*.txt)") });
    if (!place)
        return;
    writeDiagnostics(place->fileName, m_options, m_connections->place(), m_diagnostics.lines());
    m_status->showSavedFile(QStringLiteral("已保存诊断信息"), place->fileName);
}

} // namespace client
