#include "guest/track_query.h"
#include "guest/track_window.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/refusal.h"
#include "platform/toolkit/screen.h"

#include <algorithm>
#include <memory>

using namespace guest;
using namespace platform;

namespace {

const QString refusalTitle = QStringLiteral("客户查询");

void openWindow(const QStringList &bills, QList<TCustomRemoteServer *> servers)
{
    if (!Application->mainForm())
        throw Exception(QStringLiteral("主窗口没有打开，无法显示客户查询。"));
    servers.removeAll(nullptr);
    if (servers.isEmpty() && refuse(u"没有连接到应用服务器，请重新登录后再查询！", refusalTitle))
        return;
    const WantedNumbers wanted = wantedNumbers(bills);
    if (!wanted.refused.isEmpty())
        refuse(QString(u"这些内容不是运单号，不能查询，请核对：\n" + wanted.refused.join(u'\n')), refusalTitle);
    else if (wanted.numbers.isEmpty())
        refuse(u"没有运单号，请先选中要查询的运单！", refusalTitle);
    if (wanted.numbers.isEmpty())
        return;
    auto window = std::make_unique<TrackWindow>(Application, wanted.numbers, servers);
    window->refresh();
    window.release()->showForm();
}

const LibraryRegistration registration({ {}, closeTrackWindows });

} // namespace

/// Shows the whole track of each waybill of the list in a window of its own inside the host's main window, and returns while it
/// stays open. `connections` holds the host's connection and perhaps a second one, asked for what the first does not know; either
/// may be null. `highest` is the index of the array's last element. The list is copied. Nothing is thrown: what goes wrong is
/// shown to the user.
KELVARA_EXPORT void KELVARA_CALL ShowQuestQuery(
    QStringList *bills, TApplication *application, TScreen *screen, TCustomRemoteServer *const *connections, int highest)
{
    guarded([&] {
        if (application)
            Application = application;
        if (screen)
            Screen = screen;
        openWindow(bills ? *bills : QStringList(), openArray(connections, highest));
    });
}
