#include "client/screen_list.h"
#include "tests/screens/client_process.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace client;

namespace {

TEST(StartUp, NamesThatAreNoScreenGetTheEntrysErrorBox)
{
    ClientProcess client;
    for (const char *screen : { "FRM_SCANCONTRAST111", "frm_ScanContrast", "frm_NoSuchScreen111" }) {
        const QJsonObject reply = client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString::fromLatin1(screen) } });
        EXPECT_TRUE(reply[u"form"].isNull()) << screen;
        const QJsonArray messages = client.events(QStringLiteral("message"));
        ASSERT_EQ(messages.size(), 1) << screen;
        EXPECT_EQ(messages[0][u"text"].toString(), QStringLiteral("详细：此窗体不存在！"));
        EXPECT_EQ(messages[0][u"title"].toString(), QStringLiteral("DLL调用"));
        EXPECT_EQ(messages[0][u"flags"].toInt(), 16);
    }
    EXPECT_EQ(client.quit(), 0);
}

TEST(StartUp, EveryScreenOpensUnderTheCaptionOfItsMenu)
{
    ClientProcess client;
    for (const ScreenGroup &group : screenGroups) {
        for (const ScreenItem &screen : group.screens) {
            const QJsonObject reply = client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString(screen.name + u"111") } });
            EXPECT_EQ(reply[u"form"].toString(), screen.name);
            EXPECT_EQ(reply[u"caption"].toString(), screen.caption);
        }
    }
    EXPECT_TRUE(client.events(QStringLiteral("error")).isEmpty());
    EXPECT_EQ(client.quit(), 0);
}

TEST(StartUp, AMissingDatabaseIsToldByName)
{
    ClientProcess client({ QStringLiteral("--database"), QStringLiteral("sqlite:/nowhere/没有.db") });
    const QJsonObject reply = client.ask({ { QStringLiteral("do"), QStringLiteral("forms") } });
    EXPECT_FALSE(reply[u"ok"].toBool(true));
    EXPECT_TRUE(reply[u"error"].toString().contains(u"没有.db"));
    EXPECT_NE(client.quit(), 0);
}

TEST(StartUp, ADatabaseThatIsLostKeepsTheScreenAndItsConditions)
{
    const QTemporaryDir directory;
    const QString copy = directory.filePath(QStringLiteral("copy.db"));
    ASSERT_TRUE(QFile::copy(ClientProcess::database(), copy));
    ClientProcess client({ QStringLiteral("--database"), QString(u"sqlite:" + copy) });
    client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ScanContrast111") } });
    client.set(QStringLiteral("DBLookupComboboxEh7"), QStringLiteral("发件"));
    client.obey(QStringLiteral("query"));
    const QJsonObject view { { QStringLiteral("view"), QStringLiteral("DataView2") } };
    const int onlySource = client.obey(QStringLiteral("rows"), view)[u"total"].toInt();
    EXPECT_GT(onlySource, 0);

    QFile lost(copy);
    ASSERT_TRUE(lost.resize(4096 * 3));
    client.events();
    EXPECT_FALSE(client.ask({ { QStringLiteral("do"), QStringLiteral("query") } })[u"ok"].toBool(true));
    EXPECT_EQ(client.events(QStringLiteral("error")).size(), 1);
    EXPECT_EQ(client.textOf(QStringLiteral("DBLookupComboboxEh7")), QStringLiteral("发件"));
    EXPECT_EQ(client.obey(QStringLiteral("rows"), view)[u"total"].toInt(), onlySource);
    const QJsonObject emptied { { QStringLiteral("view"), QStringLiteral("DataView1") } };
    EXPECT_TRUE(client.obey(QStringLiteral("rows"), emptied)[u"note"].toString().contains(u"查询没有完成"));
    EXPECT_EQ(client.quit(), 0);
}

TEST(StartUp, ALayoutThatCannotBeSavedIsToldWhenTheScreenCloses)
{
    ClientProcess client;
    // A file where the folder of the layouts should be.
    const QString folder = client.settingsDirectory() + u"/WindowsIni";
    QDir(folder).removeRecursively();
    QFile blocking(folder);
    ASSERT_TRUE(blocking.open(QIODevice::WriteOnly));
    for (const char *screen : { "frm_ScanContrast", "frm_ManCome" }) {
        client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString(QLatin1String(screen) + u"111") } });
        client.obey(QStringLiteral("close"), { { QStringLiteral("form"), QLatin1String(screen) } });
    }
    const QJsonArray messages = client.events(QStringLiteral("message"));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0][u"text"].toString().contains(u"没有保存")) << messages[0][u"text"].toString().toStdString();
    EXPECT_EQ(client.quit(), 0);
}

} // namespace
