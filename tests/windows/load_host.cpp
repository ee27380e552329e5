#include "tests/windows/load_host.h"

#include "platform/connection/remote_server.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/screen.h"

#include <QApplication>

#include <cstdio>
#include <memory>

namespace {

/// Nobody asks it anything.
class NoServer : public TCustomRemoteServer {
public:
    packet::PacketPtr runStatement(const QString &) override { return nullptr; }
};

std::unique_ptr<QApplication> application;
std::unique_ptr<TLibrary> library;
NoServer server;
QByteArray lastMessage;

} // namespace

void host_begin(int argc, char **argv)
{
    static int count = argc; // the toolkit keeps a reference
    application = std::make_unique<QApplication>(count, argv);
    Application->setMessageResponder([](const platform::MessageRequest &request) {
        lastMessage = request.text.toUtf8();
        return int(request.defaultAnswer());
    });
}

int host_load(void)
try {
    library = std::make_unique<TLibrary>(Application->directory() + QStringLiteral("/Kelvara1.dll"));
    return 1;
} catch (const Exception &exception) {
    std::printf("%s\n", exception.message().toUtf8().constData());
    return 0;
}

void host_unload(void) { library.reset(); }
void *host_application(void) { return Application; }
void *host_screen(void) { return Screen; }
void *host_connection(void) { return &server; }
const char *host_last_message(void) { return lastMessage.constData(); }
