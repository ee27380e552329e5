#include "plugin/util/guest_query.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"

#include <QStringList>

#include <memory>

using namespace platform;
using namespace plugin;

namespace {

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
    const auto show = reinterpret_cast<QuestQueryFunction>(guest->resolve("ShowQuestQuery"));
    record(billCode, connections);
    QStringList bills = billCode.split(u'\n');
    show(&bills, Application, Screen, connections.data(), int(connections.size()) - 1);
}

namespace plugin {

void unloadGuest() { guest.reset(); }

} // namespace plugin
