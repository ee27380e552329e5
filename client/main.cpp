#include "client/automation/automation.h"
#include "client/automation/dispatcher.h"
#include "client/look.h"
#include "client/main_window.h"
#include "client/options.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

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

/// Tells why the client cannot start: to whoever automates it as a reply, to a person in a box.
void reportFailure(const QString &message, bool automated)
{
    if (automated)
        std::fputs(failureReply(message).constData(), stdout);
    else if (QApplication::platformName() == u"offscreen")
        std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    else
        Application->messageBox(message, QApplication::applicationDisplayName(), mbIconError);
}

std::unique_ptr<MainWindow> createWindow(const Options &options)
{
    if (options.database.isEmpty())
        throw Exception(QStringLiteral("没有指定数据库，请用 --database sqlite:文件 启动。"));
    if (!options.settingsDirectory.isEmpty()) {
        if (!QDir().mkpath(options.settingsDirectory))
            throw Exception(QStringLiteral("无法建立设置目录“%1”，请用 --settings 指定可以写入的目录。").arg(options.settingsDirectory));
        Application->setSettingsDirectory(options.settingsDirectory);
    }
    auto window = std::make_unique<MainWindow>(options);
    window->resize(1280, 800);
    return window;
}

int runClient(const Options &options)
{
    Clock::set(options.now);
    try {
        const std::unique_ptr<MainWindow> window = createWindow(options);
        std::unique_ptr<Automation> automation;
        window->show();
        window->activateWindow();
        if (options.automation)
            automation = std::make_unique<Automation>(window.get());
        return QApplication::exec();
    } catch (const std::exception &exception) {
        reportFailure(exceptionMessage(exception), options.automation);
        return failed;
    }
}

} // namespace

int main(int argc, char **argv)
{
    useOffscreenWithoutDisplay();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvara 查询系统"));
    QApplication::setApplicationVersion(QStringLiteral(KELVARA_VERSION));
    Options options;
    try {
        options = readOptions(QApplication::arguments().mid(1));
    } catch (const Exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return wrongOptions;
    }
    if (options.help) {
        std::fputs(optionsHelp().toUtf8().constData(), stdout);
        return succeeded;
    }
    setLook();
    const int result = runClient(options);
    waitForAbandonedWork();
    return result;
}
