#include "platform/toolkit/application.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/entry/screens.h"

#include <algorithm>

using namespace platform;
using namespace plugin;

namespace {

constexpr qsizetype rightsLength = 3;

void useConnections(const QList<QObject *> &connections)
{
    if (connections.isEmpty())
        throw Exception(QStringLiteral("没有给出数据库连接！"));
    auto *host = qobject_cast<TCustomRemoteServer *>(connections[0]);
    if (host == dm_BasicData->HostConnection)
        return;
    dm_BasicData->HostConnection = host;
    dm_GlobalData->SecondConnection = qobject_cast<TCustomRemoteServer *>(connections.value(1));
    for (TClientDataSetEx *dataSet : { dm_BasicData->comm, dm_BasicData->comm1, dm_BasicData->comm2 })
        dataSet->setRemoteServer(host);
}

void openScreen(const ScreenEntry &entry, const QString &rights)
{
    Tfrm_Basic *&screen = *entry.variable;
    if (!screen) {
        screen = entry.create(Application);
        screen->SetRights(entry.rights == Rights::FromName ? rights : QStringLiteral("000"));
        screen->SetFormVariable(&screen);
    }
    screen->showForm();
}

} // namespace

/// Opens a screen of the library as a child of the host's main window, or brings it to the front. `Connections` holds the host's
/// connection and perhaps the second one; `last` is the index of the array's last element. `FormName` (UTF-8) is the screen's name
/// followed by three characters of rights. Whatever goes wrong with the screen is shown to the user, not thrown.
KELVARA_EXPORT void KELVARA_CALL exec(TApplication *App, TScreen *Scr, QObject *const *Connections, int last, const char *FormName)
{
    if (App != Application)
        Application = App;
    if (Scr != Screen)
        Screen = Scr;

    const auto refuse = [](const QString &text) { Application->messageBox(u"详细：" + text, QStringLiteral("DLL调用"), mbIconError); };
    try {
        useConnections(openArray(Connections, last));
        const QString name = QString::fromUtf8(FormName);
        if (const ScreenEntry *entry = findScreen(QStringView(name).chopped(std::min(rightsLength, name.size()))))
            openScreen(*entry, name.right(rightsLength));
        else
            refuse(QStringLiteral("此窗体不存在！"));
    } catch (...) {
        refuse(u"因为" + currentExceptionMessage() + u"调用失败！");
    }
}
