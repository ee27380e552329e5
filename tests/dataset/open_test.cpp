#include "platform/connection/socket_connection.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/long_work.h"
#include "tests/dataset/rows.h"

#include <functional>
#include <memory>
#include <thread>

using namespace platform;

namespace {

class FakeServer : public TCustomRemoteServer {
public:
    packet::PacketPtr runStatement(const QString &statement) override
    {
        statements << statement;
        if (statement.isEmpty())
            throw Exception(QStringLiteral("语句是空的"));
        return packetOf("CODE:text\nA\nB\n");
    }
    QStringList statements;
};

TEST(Open, RunsTheCommandTextAndRecordsIt)
{
    FakeServer server;
    server.setObjectName(QStringLiteral("second"));
    TClientDataSetEx dataSet;
    dataSet.setObjectName(QStringLiteral("cds1"));
    dataSet.setRemoteServer(&server);
    dataSet.setCommandText(QStringLiteral("select 1"));
    QStringList seen;
    QObject::connect(Application, &TApplication::happened, &dataSet, [&](const QString &kind, const QVariantMap &particulars) {
        seen << kind << particulars[QStringLiteral("dataset")].toString() << particulars[QStringLiteral("connection")].toString()
             << particulars[QStringLiteral("sql")].toString() << QString::number(server.statements.size());
    });
    int rowsAtOpen = -1;
    QObject::connect(&dataSet, &TDataSet::afterOpen, [&] { rowsAtOpen = dataSet.recordCount(); });
    dataSet.open();
    dataSet.open();
    EXPECT_EQ(seen.join(u'|'), QStringLiteral("statement|cds1|second|select 1|0"));
    EXPECT_EQ(rowsAtOpen, 2);
    EXPECT_EQ(shown(dataSet, u"code"), QStringLiteral("A|B"));
    dataSet.close();
    dataSet.close();
    EXPECT_EQ(dataSet.recordCount(), 0);
    EXPECT_EQ(dataSet.data(), nullptr);
    EXPECT_EQ(dataSet.text(0, 0), QString());
}

TEST(Open, StaysClosedWhenItCannot)
{
    TClientDataSetEx dataSet;
    dataSet.setObjectName(QStringLiteral("cds"));
    EXPECT_EQ(errorOf([&] { dataSet.open(); }), QStringLiteral("数据集“cds”没有连接服务器，无法查询。"));
    {
        FakeServer server;
        dataSet.setRemoteServer(&server);
        EXPECT_EQ(errorOf([&] { dataSet.open(); }), QStringLiteral("语句是空的"));
        EXPECT_EQ(server.statements.size(), 1);
        dataSet.setData(packetOf("CODE:text\nA\n"));
        EXPECT_EQ(server.statements.size(), 1);
        dataSet.close();
    }
    EXPECT_NE(errorOf([&] { dataSet.open(); }), QString());
    EXPECT_FALSE(dataSet.active());
}

class FakeChannel : public StatementChannel {
public:
    packet::PacketPtr run(const std::string &statement, std::stop_token, const std::function<void(std::int64_t)> &progress) override
    {
        runsElsewhere = std::this_thread::get_id() != interfaceThread;
        progress(2);
        if (statement == "坏")
            throw std::runtime_error("表不存在");
        if (statement == "many")
            throw std::bad_alloc();
        return packetOf("CODE:text\nA\n");
    }
    std::thread::id interfaceThread = std::this_thread::get_id();
    bool runsElsewhere = false;
};

TEST(Connection, RunsStatementsBesideTheInterface)
{
    TSocketConnectionEx connection;
    EXPECT_FALSE(connection.connected());
    EXPECT_EQ(errorOf([&] { connection.runStatement(QStringLiteral("select 1")); }),
        QStringLiteral("没有连接到应用服务器，请重新登录后再查询。"));
    const auto channel = std::make_shared<FakeChannel>();
    connection.setChannel(channel);
    EXPECT_EQ(connection.runStatement(QStringLiteral("select 1"))->rowCount(), 1U);
    EXPECT_TRUE(channel->runsElsewhere);
    EXPECT_EQ(errorOf([&] { connection.runStatement(QStringLiteral("坏")); }), QStringLiteral("表不存在"));
    EXPECT_EQ(errorOf([&] { connection.runStatement(QStringLiteral("many")); }),
        QStringLiteral("内存不足，查询结果放不下，请缩小查询范围后再查。"));
}

} // namespace
