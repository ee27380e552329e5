#include "client/automation/automation.h"
#include "client/automation/dispatcher.h"
#include "client/connections.h"
#include "client/diagnostics.h"
#include "client/help_pages.h"
#include "client/login_dialog.h"
#include "client/main_window.h"
#include "client/options.h"
#include "client/settings_files.h"
#include "client/site_dialog.h"
#include "client/theme.h"
#include "client/unattended/report_command.h"
#include "options/console.h"
#include "options/settings_reader.h"
#include "platform/report/output/printing.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/user_settings.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>

using namespace client;
using namespace platform;

namespace {

enum ExitCode { succeeded = 0, failed = 1, wrongOptions = 2 };

void useOffscreenWithoutDisplay()
{
#if defined(__linux__)
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
}

/// The off-screen display tells of every window what it cannot do with it, and the toolkit which folder it takes where a session has
/// none: nothing that anybody has to read.
void silenceOffscreen()
{
    static QtMessageHandler previous = nullptr;
    previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
        if (!message.startsWith(u"This plugin does not support ") && !message.startsWith(u"QStandardPaths: XDG_RUNTIME_DIR not set"))
            previous(type, context, message);
    });
}

/// Tells why the client cannot start: to whoever automates it as a reply, to a person in a box.
void reportFailure(const QString &message, bool automated)
{
    if (automated)
        std::fputs(replyLine(failureReply(message)).constData(), stdout);
    else if (QApplication::platformName() == u"offscreen")
        std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    else
        Application->messageBox(message, QApplication::applicationDisplayName(), mbIconError);
}

/// Whether the servers are those that the shared files or the command line name, and not the person's own choice.
bool serversAreGiven(const QStringList &arguments)
{
    SettingsSources sources = usualSettings();
    sources.own.clear();
    return !readOptions(arguments, sources).servers.isEmpty();
}

void keepServers(const QStringList &servers)
try {
    keepOwnSetting(QStringLiteral("server"), servers.join(QStringLiteral(", ")));
} catch (const Exception &exception) {
    Application->messageLater(QStringLiteral("服务器的地址没有记住，下次登录时请再填一次。") + exception.message(),
        QApplication::applicationDisplayName(), mbIconWarning);
}

/// Null when the person who is asked to log in gives up. Whoever names servers finds them again the next time.
std::shared_ptr<Connections> askToLogIn(std::shared_ptr<Connections> connections, const QStringList &arguments, const Options &options)
{
    LoginDialog dialog(*connections, options.user.isEmpty() ? rememberedUser() : options.user);
    if (const auto keyring = Keyring::find())
        dialog.useKeyring(*keyring);
    QStringList named;
    if (!serversAreGiven(arguments))
        dialog.offerServers([&](const QStringList &servers) {
            Options others = options;
            others.servers = named = servers;
            return Connections::prepareServers(others);
        });
    if (dialog.exec() != QDialog::Accepted)
        return nullptr;
    if (dialog.namedConnections())
        connections = dialog.namedConnections();
    rememberUser(connections->user());
    if (!named.isEmpty())
        keepServers(named);
    return connections;
}

/// Null when the person who is asked to log in gives up.
std::shared_ptr<Connections> connectToServers(const QStringList &arguments, const Options &options)
{
    std::shared_ptr<Connections> connections
        = options.servers.isEmpty() ? std::make_shared<Connections>() : Connections::prepareServers(options);
    const auto password = options.servers.isEmpty() ? std::nullopt : givenPassword(options);
    if (password) {
        connections->login(options.user, *password);
        if (connections->account()->mustChangePassword)
            throw Exception(QStringLiteral("首次登录须先修改密码，请不带密码启动一次，在窗口中修改。"));
        return connections;
    }
    if (options.automation && !options.servers.isEmpty())
        throw Exception(QStringLiteral("自动方式登录服务器需要密码，请用 --password-file 或环境变量 KELVARA_PASSWORD 给出。"));
    if (options.automation || QApplication::platformName() == u"offscreen")
        throw Exception(QStringLiteral("没有显示器，登录窗口无法显示。请用 --server https://主机:端口 和 --password-file 文件，"
                                       "或 --database sqlite:文件 启动。"));
    return askToLogIn(std::move(connections), arguments, options);
}

/// Null when the person who is asked to log in gives up.
std::shared_ptr<Connections> connect(const QStringList &arguments, const Options &options)
{
    if (!options.servers.isEmpty() && !options.database.isEmpty())
        throw Exception(QStringLiteral("--database 和 --server 只能给出一个，请去掉另一个。"));
    return options.database.isEmpty() ? connectToServers(arguments, options) : Connections::openDatabase(options);
}

/// Whoever logged in at a window also says there at which site; false when the person gives up.
bool askSite(const Connections &connections, Options &options)
{
    if (!connections.account() || !options.loginSite.isEmpty() || options.automation || givenPassword(options))
        return true;
    const QStringList sites = sitesToChoose(connections);
    if (sites.isEmpty())
        return true;
    SiteDialog dialog(sites, connections.user());
    const bool isChosen = dialog.exec() == QDialog::Accepted;
    options.loginSite = dialog.site();
    return isChosen;
}

void offerPreferences(const Options &options)
{
    const auto printer
        = [](const Preferences &preferences) { return preferences.printer.isEmpty() ? QVariant() : QVariant(preferences.printer); };
    offerUserSetting(report::printerSetting, printer(options.offered));
    offerUserSetting(report::printerSetting, printer(options.wanted), Offer::WhateverWasChosen);
    offerAppearance(options);
    applyAppearance(keptAppearance());
}

/// What the centre says holds for what the person's own file does not say.
void useCentreSettings(const QStringList &arguments, Connections &connections, Options &options)
try {
    if (!connections.account())
        return;
    SettingsSources sources = usualSettings();
    sources.centre = connections.account()->settings;
    const Options told = readOptions(arguments, sources);
    options.offered = told.offered;
    connections.setCompressed(told.compressed);
    offerPreferences(options);
} catch (const std::exception &exception) {
    Application->messageLater(QStringLiteral("中心下发的设置不能用，已略过。请告诉管理员：") + exceptionMessage(exception),
        QApplication::applicationDisplayName(), mbIconWarning);
}

void useSettings(const Options &options)
{
    const QString directory = options.settingsDirectory.isEmpty() ? usualSettingsDirectory() : options.settingsDirectory;
    if (!QDir().mkpath(directory) && !options.settingsDirectory.isEmpty())
        throw Exception(QStringLiteral("无法建立设置目录“%1”，请用 --settings 指定可以写入的目录。").arg(directory));
    Application->setSettingsDirectory(directory);
    offerPreferences(options);
}

/// Runs the window of the user who is logged in, until it is closed or somebody else logs in.
int runWindow(const Options &options, const std::shared_ptr<Connections> &connections)
{
    MainWindow window(options, connections);
    window.resize(1280, 800);
    if (!options.automation)
        window.takeLastPlace();
    window.show();
    window.activateWindow();
    std::unique_ptr<Automation> automation;
    if (options.automation)
        automation = std::make_unique<Automation>(&window, options.strict ? Strictness::StopAtFailure : Strictness::GoOn);
    const int result = QApplication::exec();
    // What closed screens still have to say.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::sendPostedEvents(Application);
    return result;
}

/// Until the window is closed: whoever logs in over it as somebody else gets another one.
int runWindows(const QStringList &arguments, Options options, const std::shared_ptr<Connections> &connections)
{
    while (true) {
        useCentreSettings(arguments, *connections, options);
        if (!askSite(*connections, options))
            return succeeded;
        if (const int result = runWindow(options, connections); result != MainWindow::anotherUser)
            return result;
        rememberUser(connections->user());
        options.loginSite.clear(); // it was for the user before
    }
}

int runClient(const QStringList &arguments, const Options &options)
{
    Clock::set(options.now);
    try {
        if (!options.guideFolder.isEmpty()) {
            writeGuide(options.guideFolder);
            return succeeded;
        }
        useSettings(options);
        if (!options.diagnoseFile.isEmpty()) {
            const QString place = options.servers.isEmpty() ? options.database : options.servers.join(QStringLiteral("、"));
            writeDiagnostics(options.diagnoseFile, options, place, Diagnostics::keptLines());
            return succeeded;
        }
        const std::shared_ptr<Connections> connections = connect(arguments, options);
        if (!connections)
            return succeeded;
        const int result = runWindows(arguments, options, connections);
        connections->logout();
        return result;
    } catch (const std::exception &exception) {
        reportFailure(exceptionMessage(exception), options.automation);
        return failed;
    }
}

int runReportCommand(const QStringList &arguments)
{
    ReportCommand command;
    try {
        command = readReportCommand(arguments);
        Clock::set(command.options.now);
        applyTheme();
        useSettings(command.options);
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s\n", exceptionMessage(exception).toUtf8().constData());
        return wrongOptions;
    }
    if (command.help) {
        std::fputs(reportHelp().toUtf8().constData(), stdout);
        return succeeded;
    }
    const int result = runReports(command);
    waitForAbandonedWork();
    return result;
}

/// What is told without a window; empty: nothing was asked.
QString answerAtOnce(const Options &options)
{
    return options.help         ? optionsHelp()
        : options.version       ? QStringLiteral("kelvara-client " KELVARA_VERSION "\n")
        : options.printSettings ? settingsSample()
                                : QString();
}

} // namespace

int main(int argc, char **argv)
{
    options::useConsole();
    const bool isReport = argc > 1 && std::string_view(argv[1]) == "report";
    if (isReport)
        qputenv("QT_QPA_PLATFORM", "offscreen"); // no window is for anybody to see
    useOffscreenWithoutDisplay();
    silenceOffscreen();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvara 查询系统"));
    QApplication::setApplicationVersion(QStringLiteral(KELVARA_VERSION));
    const QStringList arguments = QApplication::arguments().mid(1);
    if (isReport)
        return runReportCommand(arguments.mid(1));
    Options options;
    try {
        options = readOptions(arguments, usualSettings());
    } catch (const options::SettingsError &error) {
        // Whoever starts the client by a click sees no error stream.
        reportFailure(QString::fromUtf8(error.what()), false);
        return wrongOptions;
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return wrongOptions;
    }
    if (const QString text = answerAtOnce(options); !text.isEmpty()) {
        std::fputs(text.toUtf8().constData(), stdout);
        return succeeded;
    }
    applyTheme();
    const int result = runClient(arguments, options);
    waitForAbandonedWork();
    return result;
}
