#include "plugin/util/guest_query.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/screen.h"

#include <QStringList>

#include <memory>

#if defined(_WIN32)
#define KELVARA_CALL __stdcall
#else
#define KELVARA_CALL
#endif

namespace {

/// The waybills, the application and the screen object, then an open array of connections: its first element and highest index.
using GuestFunction = void(KELVARA_CALL *)(
    QStringList *bills, TApplication *application, TScreen *screen, TCustomRemoteServer *const *connections, int highest);

std::unique_ptr<TLibrary> guest;

void record(const QString &billCode, const QList<TCustomRemoteServer *> &connections)
{
    QStringList names;
    for (const TCustomRemoteServer *connection : connections)
        names.append(connection ? connection->objectName() : QString());
    Application->record(QStringLiteral("guest"), { { QStringLiteral("bill_code"), billCode }, { QStringLiteral("connections"), names } });
}

} // namespace

void ShowQuestQuery(const QString &billCode, const QList<TCustomRemoteServer *> &connections)
{
    if (!guest)
        guest = std::make_unique<TLibrary>(Application->pluginDirectory() + QStringLiteral("/Guest"));
    const auto show = reinterpret_cast<GuestFunction>(guest->resolve("ShowQuestQuery"));
    record(billCode, connections);
    QStringList bills = billCode.split(u'\n');
    show(&bills, Application, Screen, connections.data(), int(connections.size()) - 1);
}

void unloadGuest() { guest.reset(); }
