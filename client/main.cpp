#include "client/automation/automation.h"
#include "client/icons.h"
#include "client/main_window.h"
#include "client/options.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"

#include <QApplication>
#include <QFontDatabase>
#include <QJsonDocument>
#include <QStyleFactory>

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

void setLook()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    for (const char16_t *family : { u"Microsoft YaHei UI", u"Noto Sans CJK SC", u"WenQuanYi Micro Hei" }) {
        if (QFontDatabase::hasFamily(QString::fromUtf16(family))) {
            QApplication::setFont(QFont(QString::fromUtf16(family), 9));
            break;
        }
    }
    QApplication::setWindowIcon(programIcon());
}

/// Tells why the client cannot start: to whoever automates it as a reply, to a person in a box.
int reportFailure(const QString &message, bool automated)
{
    if (automated) {
        const QJsonObject reply { { QStringLiteral("ok"), false }, { QStringLiteral("error"), message } };
        std::puts(QJsonDocument(reply).toJson(QJsonDocument::Compact).constData());
    } else {
        Application->messageBox(message, QApplication::applicationDisplayName(), mbIconError);
    }
    return failed;
}

int runClient(const Options &options)
{
    Clock::set(options.now);
    if (!options.settingsDirectory.isEmpty())
        Application->setSettingsDirectory(options.settingsDirectory);
    std::unique_ptr<MainWindow> window;
    try {
        if (options.database.isEmpty())
            throw Exception(QStringLiteral("没有指定数据库，请用 --database sqlite:文件 启动。"));
        window = std::make_unique<MainWindow>(options);
    } catch (const std::exception &exception) {
        return reportFailure(exceptionMessage(exception), options.automation);
    }
    std::unique_ptr<Automation> automation;
    if (options.automation) {
        automation = std::make_unique<Automation>(window.get());
        automation->start();
    }
    window->resize(1280, 800);
    window->show();
    window->activateWindow();
    const int result = QApplication::exec();
    window->close();
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    useOffscreenWithoutDisplay();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kelvara-client"));
    QApplication::setApplicationDisplayName(QStringLiteral("Kelvara 查询系统"));
    QApplication::setApplicationVersion(QStringLiteral(KELVARA_VERSION));
    setLook();
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.contains(QStringLiteral("--help"))) {
        std::fputs(optionsHelp().toUtf8().constData(), stdout);
        return succeeded;
    }
    Options options;
    try {
        options = readOptions(arguments);
    } catch (const Exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return wrongOptions;
    }
    const int result = runClient(options);
    waitForAbandonedWork();
    return result;
}
