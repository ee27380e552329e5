#include "client/main_window.h"

#include "client/embedded_channel.h"
#include "client/export/table_export.h"
#include "client/icons.h"
#include "client/screen_list.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/screen.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QMdiArea>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>

namespace {

using ExecFunction = void (*)(TApplication *, TScreen *, QObject *const *, int, const char *);

constexpr int formClosed = 1125;

} // namespace

/// One command of the menus.
struct MainWindow::ActionRow {
    enum Needs { Nothing, Form, Grid };
    QStringView menu;
    QStringView caption; ///< empty: a separator
    QStringView shortcuts; ///< the first one stands in the menu
    const char *icon; ///< on the toolbar too, when there is one
    Needs needs;
    std::function<void(MainWindow *)> run;
};

const QList<MainWindow::ActionRow> &MainWindow::actionRows()
{
    static const QList<ActionRow> rows {
        { u"操作(&O)", u"查询", u"F9;F5;Ctrl+Return", "query", ActionRow::Form, [](MainWindow *window) { window->query(); } },
        { u"操作(&O)", u"导出…", u"Ctrl+E", "export", ActionRow::Grid, [](MainWindow *window) { window->exportCurrent(); } },
        { u"操作(&O)", u"打印", u"Ctrl+P", "print", ActionRow::Nothing, {} }, // waits for the report engine
        { u"操作(&O)", u"", u"", nullptr, ActionRow::Nothing, {} },
        { u"操作(&O)", u"查找…", u"Ctrl+F", "find", ActionRow::Grid, [](MainWindow *window) { window->findAsking(); } },
        { u"操作(&O)", u"查找下一个", u"F3", nullptr, ActionRow::Grid, [](MainWindow *window) { window->findAgain(true); } },
        { u"操作(&O)", u"查找上一个", u"Shift+F3", nullptr, ActionRow::Grid, [](MainWindow *window) { window->findAgain(false); } },
        { u"操作(&O)", u"复制", u"", "copy", ActionRow::Grid, [](MainWindow *window) { window->copy(false); } },
        { u"操作(&O)", u"带标题复制", u"Ctrl+Shift+C", nullptr, ActionRow::Grid, [](MainWindow *window) { window->copy(true); } },
        { u"操作(&O)", u"", u"", nullptr, ActionRow::Nothing, {} },
        { u"操作(&O)", u"退出", u"Alt+F4", nullptr, ActionRow::Nothing, [](MainWindow *window) { window->close(); } },
        { u"窗口(&W)", u"层叠", u"", nullptr, ActionRow::Form, [](MainWindow *window) { window->mdiArea()->cascadeSubWindows(); } },
        { u"窗口(&W)", u"平铺", u"", nullptr, ActionRow::Form, [](MainWindow *window) { window->mdiArea()->tileSubWindows(); } },
        { u"窗口(&W)", u"下一个窗口", u"Ctrl+Tab", nullptr, ActionRow::Form,
            [](MainWindow *window) { window->mdiArea()->activateNextSubWindow(); } },
        { u"窗口(&W)", u"关闭窗口", u"Ctrl+F4", nullptr, ActionRow::Form,
            [](MainWindow *window) { window->mdiArea()->closeActiveSubWindow(); } },
        { u"窗口(&W)", u"全部关闭", u"", nullptr, ActionRow::Form, [](MainWindow *window) { window->mdiArea()->closeAllSubWindows(); } },
        { u"帮助(&H)", u"快捷键", u"F1", nullptr, ActionRow::Nothing, [](MainWindow *window) { window->showShortcuts(); } },
        { u"帮助(&H)", u"关于", u"", nullptr, ActionRow::Nothing, [](MainWindow *window) { window->showAbout(); } },
    };
    return rows;
}

MainWindow::MainWindow(const Options &options)
    : m_options(options)
    , m_engine(engine::openEngine(options.database.toStdString()))
    , m_serverAhead(options.serverNow.isValid() ? Clock::now().msecsTo(options.serverNow) : 0)
{
    m_host.setObjectName(QStringLiteral("host"));
    m_second.setObjectName(QStringLiteral("second"));
    for (TSocketConnectionEx *connection : { &m_host, &m_second })
        connection->setChannel(std::make_shared<EmbeddedChannel>(m_engine));
    m_data.load(&m_host, options.user, options.loginSite, this);

    Application->setMainForm(this);
    Screen->registerCursor(crQueryBusy, Qt::BusyCursor);
    const QString directory = options.pluginDirectory.isEmpty() ? QApplication::applicationDirPath() : options.pluginDirectory;
    m_library = std::make_unique<TLibrary>(directory + QStringLiteral("/Kelvara1"));

    setWindowTitle(QApplication::applicationDisplayName() + u" - " + options.loginSite);
    mdiArea()->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    createActions();
    createStatusBar();
    updateCommands();
}

MainWindow::~MainWindow()
{
    // What the plug-in made must go before its code does.
    qDeleteAll(mdiArea()->subWindowList());
    m_library.reset();
    Application->setMainForm(nullptr);
}

void MainWindow::openScreen(const QString &formName)
{
    const auto exec = reinterpret_cast<ExecFunction>(m_library->resolve("exec"));
    QObject *const connections[] = { &m_host, &m_second };
    exec(Application, Screen, connections, 1, formName.toUtf8().constData());
}

qintptr MainWindow::perform(int message, quintptr formAddress, qintptr)
{
    const auto *form = reinterpret_cast<const TForm *>(formAddress);
    Application->record(
        QStringLiteral("perform"), { { QStringLiteral("message"), message }, { QStringLiteral("form"), form->objectName() } });
    if (message == formClosed)
        takeGrid(nullptr);
    // The form is still being made or already on its way out; what depends on it waits for the next turn.
    QMetaObject::invokeMethod(this, &MainWindow::updateCommands, Qt::QueuedConnection);
    return 0;
}

void MainWindow::ResetSearch(QObject *grid)
{
    const QVariant path = grid ? QVariant(componentPath(grid)) : QVariant::fromValue(nullptr);
    Application->record(QStringLiteral("resetSearch"), { { QStringLiteral("grid"), path } });
    takeGrid(qobject_cast<TDBGridEh *>(grid));
}

void MainWindow::takeGrid(TDBGridEh *grid)
{
    disconnect(m_gridRows);
    m_grid = grid;
    if (m_grid && m_grid->dataSource())
        m_gridRows = handle(m_grid->dataSource(), &TDataSource::rowsChanged, this, &MainWindow::updateStatus);
    updateCommands();
}

TDBGridEh *MainWindow::currentGrid() const { return m_grid; }

void MainWindow::query()
{
    const TForm *form = activeForm();
    if (auto *button = form ? qobject_cast<QAbstractButton *>(form->property("QueryButton").value<QObject *>()) : nullptr)
        button->click();
}

void MainWindow::copy(bool titles)
{
    if (m_grid)
        m_grid->copySelection(titles);
}

void MainWindow::exportCurrent(QString fileName)
{
    if (!m_grid)
        throw Exception(QStringLiteral("没有可以导出的表格，请先打开一个查询窗口。"));
    if (fileName.isEmpty()) {
        const QString proposed = activeForm()->caption() + Clock::now().toString(u" yyyy-MM-dd HHmm") + u".csv";
        fileName
            = QFileDialog::getSaveFileName(this, QStringLiteral("导出"), proposed, QStringLiteral("CSV 文件 (*.csv);;文本文件 (*.txt)"));
    }
    if (fileName.isEmpty())
        return;
    const int rows = exportGrid(*m_grid, fileName);
    statusBar()->showMessage(QStringLiteral("已导出 %1 行到 %2").arg(rows).arg(fileName), 10'000);
}

bool MainWindow::find(const QString &text, bool forward)
{
    m_findText = text;
    return m_grid && m_grid->findNext(text, forward);
}

void MainWindow::findAsking()
{
    bool accepted = false;
    const QString text
        = QInputDialog::getText(this, QStringLiteral("查找"), QStringLiteral("查找内容："), QLineEdit::Normal, m_findText, &accepted);
    if (accepted && !text.isEmpty() && !find(text))
        Application->messageBox(QStringLiteral("找不到“%1”。").arg(text), QStringLiteral("查找"), mbOk);
}

void MainWindow::findAgain(bool forward)
{
    if (m_findText.isEmpty())
        findAsking();
    else
        find(m_findText, forward);
}

void MainWindow::createActions()
{
    auto *toolBar = addToolBar(QStringLiteral("工具栏"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QMenu *const scans = menuBar()->addMenu(QStringLiteral("扫描查询(&S)"));
    for (const ScreenItem &screen : scanScreens)
        addScreens(scans, screen.name.toString(), screen.caption.toString());
    QMenu *const reports = menuBar()->addMenu(QStringLiteral("费用报表(&R)"));
    for (const ScreenItem &screen : reportScreens)
        addScreens(reports, screen.name.toString(), screen.caption.toString());

    QMenu *menu = nullptr;
    for (const ActionRow &row : actionRows()) {
        if (!menu || menu->title() != row.menu)
            menu = menuBar()->addMenu(row.menu.toString());
        if (row.caption.isEmpty()) {
            menu->addSeparator();
            toolBar->addSeparator();
            continue;
        }
        QAction *action = createAction(row);
        menu->addAction(action);
        if (row.icon)
            toolBar->addAction(action);
        if (menu->title() == u"窗口(&W)")
            m_windowMenu = menu;
    }
    handle(m_windowMenu, &QMenu::aboutToShow, this, &MainWindow::listWindows);
}

QAction *MainWindow::createAction(const ActionRow &row)
{
    auto *action = new QAction(row.caption.toString(), this);
    QList<QKeySequence> shortcuts;
    for (const QStringView shortcut : row.shortcuts.split(u';', Qt::SkipEmptyParts))
        shortcuts.append(QKeySequence(shortcut.toString()));
    action->setShortcuts(shortcuts);
    if (!shortcuts.isEmpty())
        action->setToolTip(row.caption.toString() + QStringLiteral(" (%1)").arg(shortcuts.first().toString()));
    if (row.icon)
        action->setIcon(commandIcon(row.icon));
    if (row.needs == ActionRow::Form)
        m_formActions.append(action);
    if (row.needs == ActionRow::Grid)
        m_gridActions.append(action);
    action->setEnabled(bool(row.run));
    if (row.run)
        handle(action, &QAction::triggered, this, [this, run = row.run] { run(this); });
    return action;
}

void MainWindow::listWindows()
{
    qDeleteAll(std::exchange(m_windowActions, {}));
    for (TForm *form : forms()) {
        QAction *action = m_windowMenu->addAction(form->caption());
        action->setCheckable(true);
        action->setChecked(form == activeForm());
        handle(action, &QAction::triggered, form, &TForm::showForm);
        m_windowActions.append(action);
    }
}

void MainWindow::addScreens(QMenu *menu, const QString &name, const QString &caption)
{
    handle(menu->addAction(caption), &QAction::triggered, this, [this, name] { openScreen(name + menuRights); });
}

void MainWindow::createStatusBar()
{
    const auto add = [this](const QString &text) {
        auto *label = new QLabel(text);
        label->setContentsMargins(8, 0, 8, 0);
        statusBar()->addPermanentWidget(label);
        return label;
    };
    m_rowsLabel = add({});
    m_rightsLabel = add({});
    add(QStringLiteral("用户：%1").arg(m_options.user));
    add(QStringLiteral("网点：%1").arg(m_options.loginSite));
    m_timeLabel = add({});
    handle(&m_tick, &QTimer::timeout, this, [this] { m_timeLabel->setText(dateTimeToText(serverTime())); });
    m_timeLabel->setText(dateTimeToText(serverTime()));
    m_tick.start(1000);
}

void MainWindow::updateCommands()
{
    for (QAction *action : std::as_const(m_formActions))
        action->setEnabled(activeForm());
    for (QAction *action : std::as_const(m_gridActions))
        action->setEnabled(m_grid);
    QString rights;
    if (const TForm *form = activeForm())
        for (const char *name : { "Right1", "Right2", "Right3" })
            rights += form->property(name).toBool() ? u'1' : u'0';
    if (m_rightsLabel)
        m_rightsLabel->setText(rights.isEmpty() ? rights : QStringLiteral("权限：%1").arg(rights));
    updateStatus();
}

void MainWindow::updateStatus()
{
    if (!m_rowsLabel)
        return;
    auto *dataSet = m_grid ? qobject_cast<TCustomClientDataSet *>(m_grid->dataSet()) : nullptr;
    QString text;
    if (dataSet && dataSet->active())
        text = QStringLiteral("共 %1 行").arg(QLocale::c().toString(dataSet->recordCount()))
            + (dataSet->truncated() ? QStringLiteral("（已截断）") : QString());
    m_rowsLabel->setText(text);
}

QDateTime MainWindow::serverTime() const { return Clock::now().addMSecs(m_serverAhead); }

double MainWindow::serverDateTime() const
{
    const QDateTime time = serverTime();
    return double(QDate(1899, 12, 30).daysTo(time.date())) + double(time.time().msecsSinceStartOfDay()) / 86'400'000.0;
}

void MainWindow::showShortcuts()
{
    QString text;
    for (const ActionRow &row : actionRows())
        if (!row.shortcuts.isEmpty())
            text += row.caption.toString() + QStringLiteral("：") + row.shortcuts.toString().replace(u';', u'、') + u'\n';
    Application->messageBox(text.trimmed(), QStringLiteral("快捷键"), mbOk);
}

void MainWindow::showAbout()
{
    Application->messageBox(
        QApplication::applicationDisplayName() + u' ' + QApplication::applicationVersion(), QStringLiteral("关于"), mbOk);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    mdiArea()->closeAllSubWindows();
    const QList<QMdiSubWindow *> windows = mdiArea()->subWindowList();
    event->setAccepted(std::none_of(windows.begin(), windows.end(), [](const QMdiSubWindow *window) { return window->isVisible(); }));
}
