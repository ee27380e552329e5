#include "client/main_window.h"

#include "client/connections.h"
#include "client/login_dialog.h"
#include "client/screen_list.h"
#include "client/start_desk.h"
#include "client/status_line.h"
#include "client/window_tabs.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_zoom.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"
#include "platform/toolkit/user_settings.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

const QString placeSetting = QStringLiteral("Window/Place");
const QString zoomSetting = QStringLiteral("Window/GridZoom");

} // namespace

MainWindow::MainWindow(const Options &options, std::shared_ptr<Connections> connections)
    : m_options(options)
    , m_connections(std::move(connections))
    , m_login(m_connections->account() ? Login::of(options, *m_connections->account()) : Login::of(options))
    , m_status(new StatusLine)
{
    m_sinceStart.start();
    setStatusBar(m_status);
    m_host.setObjectName(QStringLiteral("host"));
    m_second.setObjectName(QStringLiteral("second"));
    m_host.setChannel(m_diagnostics.timed(m_connections->host()));
    m_second.setChannel(m_diagnostics.timed(m_connections->second()));
    handle(m_connections.get(), &Connections::reached, m_status, &StatusLine::showServer);
    m_connections->setAskAgain([this](const QString &why) { logInAgain(why); });
    loadData();
    m_status->showLogin(m_data.employeeName(), m_login.site);
    if (m_connections->account())
        m_status->showServer(m_connections->reachedAddress());

    Screen->registerCursor(crQueryBusy, Qt::BusyCursor);
    handle(Application, &TApplication::happened, this, [this](const QString &kind, const QVariantMap &particulars) {
        if (kind == u"cancelled" || kind == u"error")
            ++m_failures;
        if (kind == u"cancelled")
            m_status->showMessage(particulars[QStringLiteral("text")].toString(), messageMilliseconds);
    });
    // A query changes the rows many times, and tells when it is done.
    m_rowsLater.setSingleShot(true);
    handle(&m_rowsLater, &QTimer::timeout, this, [this] {
        if (!longWorkRuns())
            showRows();
    });
    rememberConditions();
    watchLists();
    setWindowTitle(QApplication::applicationDisplayName() + u" - " + m_login.site);
    mdiArea()->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // Closing a screen leads back to the one that it was opened from.
    mdiArea()->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    mdiArea()->setBackground(palette().window());
    createScreenMenus();
    createCommands();
    createWindowTabs();
    createStartPage();
    updateCommands();
    handle(&m_clock, &QTimer::timeout, this, [this] {
        m_status->showTime(dateTimeToText(serverTime()));
        showRows();
    });
    m_status->showTime(dateTimeToText(serverTime()));
    m_clock.start(1000);
    loadPlugin();
}

MainWindow::~MainWindow()
{
    m_connections->setAskAgain({});
    m_startDesk.reset(); // a count may still be asked
    hide(); // what is seen shows texts that lie in the library
    // The screens' code lies in the library; a closed one may still await its deletion.
    qDeleteAll(Application->components());
    qDeleteAll(mdiArea()->findChildren<QMdiSubWindow *>());
    m_memory.reset(); // what it still has to write is the screens' texts
    m_library.reset();
    Application->setMainForm(nullptr);
}

/// A database that is not that of the network is told at the beginning, not when a screen is asked.
void MainWindow::loadData()
{
    const QString faults = m_connections->databaseFaults().join(QStringLiteral("；"));
    try {
        m_data.load(&m_host, m_login, this);
    } catch (const Exception &exception) {
        if (faults.isEmpty())
            throw;
        throw Exception(exception.message() + u"\n数据库不完整：" + faults);
    }
    if (!faults.isEmpty())
        m_status->showMessage(u"数据库不完整，有的窗口不能查询：" + faults);
}

void MainWindow::loadPlugin()
{
    if (!m_options.pluginDirectory.isEmpty())
        Application->setPluginDirectory(m_options.pluginDirectory);
    const QDir plugins(Application->pluginDirectory());
    if (plugins.entryList({ QStringLiteral("Kelvara1.*") }, QDir::Files).isEmpty())
        throw Exception(
            QStringLiteral("目录“%1”里没有插件 Kelvara1，请重新安装，或用 --plugins 指定它所在的目录。").arg(plugins.absolutePath()));
    // The plug-in's start-up reads the published data from the main form.
    Application->setMainForm(this);
    m_library = std::make_unique<TLibrary>(plugins.absoluteFilePath(QStringLiteral("Kelvara1")));
}

void MainWindow::openScreen(const QString &formName)
{
    const QString permitted = m_login.permitted(formName);
    if (permitted.isEmpty()) {
        m_connections->reportRefusedScreen(formName);
        const ScreenItem *screen = screenItem(QStringView(formName).chopped(std::min(formName.size(), Login::rightsSize)));
        throw Exception(
            QStringLiteral("您的帐户没有打开窗口“%1”的权限，需要时请联系管理员。").arg(screen ? screen->caption.toString() : formName));
    }
    const auto exec = reinterpret_cast<ExecFunction>(m_library->resolve("exec"));
    QObject *const connections[] = { &m_host, &m_second };
    exec(Application, Screen, connections, 1, permitted.toUtf8().constData());
    m_startDesk->remember(permitted.chopped(Login::rightsSize));
}

/// Whoever comes back finds the screens as they were; somebody else gets another window.
void MainWindow::logInAgain(const QString &why)
{
    const QString before = m_connections->user();
    if (m_options.automation) {
        const auto password = givenPassword(m_options);
        if (!password)
            throw SessionEnded(why);
        m_connections->login(before, *password);
    } else {
        LoginDialog dialog(*m_connections, before, this);
        dialog.askAgain(why);
        if (dialog.exec() != QDialog::Accepted)
            throw SessionEnded(why);
    }
    if (m_connections->user() != before) {
        QCoreApplication::exit(anotherUser);
        throw Abort(QStringLiteral("已换了用户"));
    }
    m_login.screens = Login::of(m_options, *m_connections->account()).screens;
}

qintptr MainWindow::perform(int message, quintptr formAddress, qintptr)
{
    const auto *form = reinterpret_cast<const TForm *>(formAddress);
    Application->record(
        QStringLiteral("perform"), { { QStringLiteral("message"), message }, { QStringLiteral("form"), form->objectName() } });
    if (message == hostFormClosed && form->isAncestorOf(m_grid))
        useGrid(nullptr);
    // The form is still being made, or already on its way out; what depends on it waits for the next turn.
    if (message == hostFormCreating || message == hostFormActivated || message == hostFormClosed)
        QMetaObject::invokeMethod(this, &MainWindow::updateCommands, Qt::QueuedConnection);
    // The keys go on in the rows of the window that comes to the front then.
    if (message == hostFormClosed)
        QMetaObject::invokeMethod(this, &MainWindow::enterFoundRows, Qt::QueuedConnection);
    return 0;
}

void MainWindow::ResetSearch(QObject *grid)
{
    Application->record(
        QStringLiteral("resetSearch"), { { QStringLiteral("grid"), grid ? QVariant(componentPath(grid)) : QVariant::fromValue(nullptr) } });
    useGrid(qobject_cast<TDBGridEh *>(grid));
}

void MainWindow::showRows()
{
    m_rowsLater.stop();
    m_status->showRows(m_grid);
    m_status->showAsked(m_grid ? m_asked.times(*m_grid) : std::nullopt);
    const bool changed = m_grid && m_asked.haveChanged(*m_grid);
    const bool old = m_grid && m_asked.areOld(*m_grid);
    m_status->showConditions(old ? ConditionState::OldRows : changed ? ConditionState::Changed : ConditionState::AsAsked);
}

void MainWindow::useGrid(TDBGridEh *grid)
{
    if (m_grid)
        disconnect(m_grid, nullptr, this, nullptr);
    if (m_gridSource)
        disconnect(m_gridSource, nullptr, &m_rowsLater, nullptr);
    m_grid = grid;
    m_gridSource = grid ? grid->dataSource() : nullptr;
    if (m_grid) {
        handle(m_grid.data(), &TDBGridEh::selectionChanged, this, [this] { m_status->showSelection(m_grid); });
        handle(m_grid.data(), &TDBGridEh::cellMenuOpening, this, &MainWindow::offerTracks);
    }
    if (m_gridSource)
        handle(m_gridSource.data(), &TDataSource::rowsChanged, &m_rowsLater, [this] { m_rowsLater.start(); });
    updateCommands();
}

QObject *MainWindow::queryButton() const
{
    const TForm *form = activeForm();
    return form ? form->property(published_by_screen::queryButton).value<QObject *>() : nullptr;
}

QDateTime MainWindow::serverTime() const
{
    if (m_options.serverNow.isValid())
        return m_options.serverNow.addMSecs(m_sinceStart.elapsed());
    const QDateTime told = m_connections->serverTime();
    return told.isValid() ? told : Clock::now();
}

double MainWindow::serverDateTime() const { return daysOf(serverTime()); }

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (longWorkRuns())
        return;
    for (const TForm *form : forms()) {
        if (!form->parentWidget()->close())
            return;
    }
    keepPlace();
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    TMainForm::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        mdiArea()->setBackground(palette().window());
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && m_memory)
        m_memory->flush();
}

void MainWindow::takeLastPlace()
{
    setGridZoom(userSetting(zoomSetting, gridZoom()).toInt());
    if (!restoreGeometry(userSetting(placeSetting).toByteArray()))
        setWindowState(Qt::WindowMaximized);
}

/// A window that a program drives has the size that the program wants.
void MainWindow::keepPlace() const
{
    if (m_options.automation)
        return;
    keepUserSetting(placeSetting, saveGeometry());
    keepUserSetting(zoomSetting, gridZoom());
}

} // namespace client
