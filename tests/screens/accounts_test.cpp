// Whole screens, as the account of the user allows them.

#include "tests/screens/screen_test.h"
#include "tests/screens/server_process.h"

#include <QThread>

namespace {

QJsonObject open(ClientProcess &client, const char *screen)
{
    return client.ask({ { QStringLiteral("do"), QStringLiteral("open") }, { QStringLiteral("screen"), QString::fromLatin1(screen) } });
}

QJsonObject query(ClientProcess &client) { return client.ask({ { QStringLiteral("do"), QStringLiteral("query") } }); }

TEST(Accounts, OpenTheirOwnScreensAlone)
{
    ServerProcess::setBranch({ { "site", "北京朝阳" }, { "screens", "frm_ManSend=100" } });
    const ServerProcess server;
    ClientProcess client(ServerProcess::clientOptions({ &server }, QStringLiteral("分部")));
    for (const char *screen : { "frm_MonthSendBill111", "frm_ManSend", "111", "frm_mansend111" }) {
        const QJsonObject refused = open(client, screen);
        EXPECT_FALSE(refused[u"ok"].toBool()) << screen;
        EXPECT_TRUE(refused[u"error"].toString().contains(QStringLiteral("权限"))) << screen;
    }
    EXPECT_TRUE(client.obey(QStringLiteral("forms"))[u"forms"].toArray().isEmpty());
    EXPECT_EQ(open(client, "frm_ManSend111")[u"form"].toString(), QStringLiteral("frm_ManSend"));
    EXPECT_EQ(client.events(QStringLiteral("error")).size(), 0);
}

TEST(Accounts, AScriptLogsInAgainAsSoonAsItMay)
{
    ServerProcess::setBranch({ { "site", "北京朝阳" } });
    const ServerProcess server;
    ClientProcess client(ServerProcess::clientOptions({ &server }, QStringLiteral("分部")));
    client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ManSend111") } });
    ServerProcess::setBranch({ { "site", "北京朝阳" }, { "locked", "yes" } });
    QJsonObject refused;
    for (int tries = 0; tries < 30 && refused[u"error"].toString().isEmpty(); ++tries) {
        QThread::msleep(500);
        refused = query(client);
    }
    EXPECT_TRUE(refused[u"error"].toString().contains(QStringLiteral("停用"))) << refused[u"error"].toString().toStdString();
    ServerProcess::setBranch({ { "site", "北京朝阳" } });
    QJsonObject taken;
    for (int tries = 0; tries < 30 && !taken[u"ok"].toBool(); ++tries) {
        QThread::msleep(500);
        taken = query(client);
    }
    EXPECT_TRUE(taken[u"ok"].toBool()) << "over the screen that was open all the time";
    EXPECT_EQ(client.obey(QStringLiteral("forms"))[u"forms"].toArray().size(), 1);
}

} // namespace
