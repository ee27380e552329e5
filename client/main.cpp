#include "client/automation/automation.h"
#include "client/automation/dispatcher.h"
#include "client/connections.h"
#include "client/help_pages.h"
#include "client/login_dialog.h"
#include "client/main_window.h"
#include "client/options.h"
#include "client/theme.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <memory>
#include <optional>

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

/// False when the person who is asked to log in gives up.
bool logIn(Connections &connections, const Options &options)
{
    if (const auto password = givenPassword(options)) {
        connections.login(options.user, *password);
        if (connections.account()->mustChangePassword)
            throw Exception(QStringLiteral("首次登录须先修改密码，请不带密码启动一次，在窗口中修改。"));
        return true;
    }
    if (options.automation)
        throw Exception(QStringLiteral("自动方式登录服务器需要密码，请用 --password-file 或环境变量 KELVARA_PASSWORD 给出。"));
    LoginDialog dialog(connections, options.user.isEmpty() ? rememberedUser() : options.user);
    if (const auto keyring = Keyring::find())
        dialog.useKeyring(*keyring);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    rememberUser(connections.user());
    return true;
}

/// Null when the person who is asked to log in gives up.
std::shared_ptr<Connections> connect(const Options &options)
{
    if (options.servers.isEmpty() == options.database.isEmpty())
        throw Exception(QStringLiteral("请用 --database sqlite:文件 或 --server https://主机:端口 之一启动。"));
    if (options.servers.isEmpty())
        return Connections::openDatabase(options);
    std::shared_ptr<Connections> connections = Connections::prepareServers(options);
    return logIn(*connections, options) ? connections : nullptr;
}

void useSettings(const QString &directory)
{
    if (directory.isEmpty())
        return;
    if (!QDir().mkpath(directory))
        throw Exception(QStringLiteral("无法建立设置目录“%1”，请用 --settings 指定可以写入的目录。").arg(directory));
    Application->setSettingsDirectory(directory);
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

int runClient(Options options)
{
    Clock::set(options.now);
    try {
        if (!options.guideFolder.isEmpty()) {
            writeGuide(options.guideFolder);
            return succeeded;
        }
        useSettings(options.settingsDirectory);
        applyAppearance(keptAppearance());
        const std::shared_ptr<Connections> connections = connect(options);
        if (!connections)
            return succeeded;
        int result = runWindow(options, connections);
        while (result == MainWindow::anotherUser) {
            options.loginSite.clear(); // it was for the user before
            rememberUser(connections->user());
            result = runWindow(options, connections);
        }
        connections->logout();
        return result;
    } catch (const std::exception &exception) {
        reportFailure(exceptionMessage(exception), options.automation);
        return failed;
    }
}

} // namespace

int main(int argc, char **argv)
{
    useOffscreenWithoutDisplay();
    silenceOffscreen();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvara 查询系统"));
    QApplication::setApplicationVersion(QStringLiteral(KELVARA_VERSION));
    Options options;
    try {
        options = readOptions(QApplication::arguments().mid(1));
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return wrongOptions;
    }
    if (options.help || options.version) {
        std::fputs(options.help ? optionsHelp().toUtf8().constData() : "kelvara-client " KELVARA_VERSION "\n", stdout);
        return succeeded;
    }
    applyTheme();
    const int result = runClient(options);
    waitForAbandonedWork();
    return result;
}
