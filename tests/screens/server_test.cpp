// Whole screens over application servers: the same rows as from a database in the client, and what happens when servers go.

#include "tests/engine/postgresql_server.h"
#include "tests/screens/screen_test.h"
#include "tests/screens/server_process.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

/// Queries a screen, shows the detail of the row whose texts come first, and gives all rows of both grids.
QStringList rowsOf(ClientProcess &client, const char *screen, const char *summary, const char *field, const char *details)
{
    client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString::fromLatin1(screen) } });
    client.obey(QStringLiteral("query"));
    QStringList rows;
    const auto take = [&](const char *what, const char *view) {
        const QJsonObject reply = client.obey(QString::fromLatin1(what), { { QStringLiteral("view"), QString::fromLatin1(view) } });
        for (const QJsonValue &row : reply[u"rows"].toArray())
            rows.append(QString::fromUtf8(QJsonDocument(row.toArray()).toJson(QJsonDocument::Compact)));
    };
    take("rows", summary);
    if (details) {
        client.obey(QStringLiteral("cell"),
            { { QStringLiteral("view"), QString::fromLatin1(summary) },
                { QStringLiteral("row"), int(std::min_element(rows.begin(), rows.end()) - rows.begin()) },
                { QStringLiteral("field"), QString::fromLatin1(field) }, { QStringLiteral("doubleClick"), true } });
        take("rows", details);
        take("footer", details);
    }
    client.obey(QStringLiteral("close"));
    return rows;
}

/// `anyOrder`: where a statement leaves the order of rows open, another database may choose another one.
void expectTheSameScreens(ClientProcess &embedded, ClientProcess &remote, bool anyOrder = false)
{
    const struct {
        const char *screen;
        const char *summary;
        const char *field;
        const char *details;
    } cases[] {
        { "frm_ScanContrast111", "DataView1", nullptr, nullptr },
        { "frm_ManCome111", "DataView2", "BILLCOUNT", "DataView1" },
        { "frm_MonthSendBill111", "DataView2", "bill_count", "DataView1" },
    };
    for (const auto &[screen, summary, field, details] : cases) {
        QStringList expected = rowsOf(embedded, screen, summary, field, details);
        QStringList received = rowsOf(remote, screen, summary, field, details);
        if (anyOrder) {
            expected.sort();
            received.sort();
        }
        ASSERT_GT(expected.size(), 1) << screen;
        ASSERT_EQ(received.size(), expected.size()) << screen;
        for (qsizetype row = 0; row < expected.size(); ++row)
            ASSERT_EQ(received[row], expected[row]) << screen << ", row " << row;
    }
    EXPECT_EQ(remote.events(QStringLiteral("error")).size(), 0);
}

TEST(Servers, GiveTheSameRowsAsADatabaseInTheClient)
{
    const ServerProcess server;
    for (const QStringList &more : { QStringList(), QStringList(QStringLiteral("--compress")) }) {
        ClientProcess embedded;
        ClientProcess remote(ServerProcess::clientOptions({ &server }) + more);
        expectTheSameScreens(embedded, remote);
    }
}

TEST(Servers, GiveTheSameRowsFromPostgresql)
{
    auto &postgresql = engine::test::PostgresqlServer::instance();
    const std::string database = postgresql.makeDatabase();
    ClientProcess::makeDemo(QString::fromStdString(postgresql.ownerUrl(database)));
    const ServerProcess server(0, QString::fromStdString(postgresql.readerUrl(database)));
    ClientProcess embedded;
    ClientProcess remote(ServerProcess::clientOptions({ &server }));
    expectTheSameScreens(embedded, remote, true);
}

/// A screen over two servers, whose log-in site has months of rows.
class TwoServers : public testing::Test {
protected:
    TwoServers()
        : m_client(ServerProcess::clientOptions({ &m_first, &m_second }))
    {
        m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_MonthSendBill111") } });
        m_client.obey(QStringLiteral("query"));
        m_expected = rows();
        EXPECT_GT(m_expected[u"total"].toInt(), 0);
    }
    QJsonObject rows() { return m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), QStringLiteral("DataView2") } }); }
    /// The errors that the query shows; none means that its rows are all there.
    int failedQueries()
    {
        m_client.ask({ { QStringLiteral("do"), QStringLiteral("query") } });
        const int errors = int(m_client.events(QStringLiteral("error")).size());
        if (errors == 0) {
            EXPECT_EQ(rows(), m_expected);
        }
        return errors;
    }

    ServerProcess m_first;
    ServerProcess m_second;
    ClientProcess m_client;
    QJsonObject m_expected;
};

TEST_F(TwoServers, TakeOverFromEachOtherUnnoticed)
{
    m_first.kill();
    EXPECT_EQ(failedQueries(), 0) << "the second takes over";
    const ServerProcess back(m_first.port());
    m_second.terminate();
    EXPECT_EQ(failedQueries(), 0) << "and the first again";
}

TEST_F(TwoServers, WithNeitherTheQueryFailsAndTheScreenStays)
{
    const int port = m_first.port();
    m_first.kill();
    m_second.kill();
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QStringLiteral("上海中心"));
    EXPECT_EQ(failedQueries(), 1);
    EXPECT_EQ(m_client.textOf(QStringLiteral("DBLookupComboboxEh5")), QStringLiteral("上海中心")) << "the conditions are still there";
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QString());
    const ServerProcess back(port);
    EXPECT_EQ(failedQueries(), 0);
}

TEST(Servers, RefuseAWrongPasswordAndAnUnknownCertificate)
{
    const ServerProcess server;
    QStringList options = ServerProcess::clientOptions({ &server });
    const auto refusal = [](const QStringList &given) {
        return ClientProcess(given).ask({ { QStringLiteral("do"), QStringLiteral("forms") } })[u"error"].toString();
    };
    QStringList wrong = options;
    wrong[1] = QStringLiteral("李四");
    EXPECT_TRUE(refusal(wrong).contains(QStringLiteral("密码"))) << refusal(wrong).toStdString();
    wrong = options;
    wrong.remove(4, 2);
    EXPECT_TRUE(refusal(wrong).contains(QStringLiteral("证书不受信任"))) << refusal(wrong).toStdString();
}

} // namespace
