// Statements that ask the same at the same time, and databases with several addresses.

#include "server/statements/shared_results.h"
#include "tests/engine/postgresql_server.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>

namespace server::test {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;

namespace {

/// Computes for a second or so; its answer is one row.
constexpr auto slow = "select count(*) as c from NUMBERS a, NUMBERS b, NUMBERS c where a.n+b.n+c.n<0 and c.n<=20";
const std::string slowAnswer = "\xEF\xBB\xBF"
                               "C\r\n0\r\n";

TestServer sharing(const std::function<void(Configuration &)> &change = {})
{
    return TestServer([&](Configuration &configuration) {
        configuration.databases[0].sharedAge = 1min;
        configuration.databases[0].workers = 4;
        if (change)
            change(configuration);
    });
}

std::unique_ptr<HttpsClient> begin(const TestServer &server, std::string_view sql, const std::string &user = "ann")
{
    auto client = std::make_unique<HttpsClient>(server.port());
    client->send("POST /v1/query HTTP/1.1\r\nHost: x\r\nAccept: text/csv\r\nContent-Length: " + std::to_string(sql.size()) + "\r\n"
        + server.as(user) + "\r\n" + std::string(sql));
    return client;
}

double running(const TestServer &server) { return server.metric("kelvara_statements_running{database=\"main\"}"); }

/// Clients of which the first leads.
std::vector<std::unique_ptr<HttpsClient>> beginSeveral(const TestServer &server, std::string_view sql, std::size_t count)
{
    std::vector<std::unique_ptr<HttpsClient>> clients;
    for (std::size_t number = 1; number <= count; ++number) {
        clients.push_back(begin(server, sql, number % 2 == 1 ? "ann" : "bob"));
        if (number == 1) {
            EXPECT_TRUE(becomesTrue([&] { return running(server) == 1; }));
        }
    }
    EXPECT_GE(server.auditLines("query", count).size(), count);
    return clients;
}

void execute(const engine::test::TemporaryDatabase &file, const char *sql)
{
    sqlite3 *database = nullptr;
    sqlite3_open(file.path().c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
}

SharedResults::ResultPtr resultOf(std::size_t bytes)
{
    return std::make_shared<const SharedResults::Result>(
        SharedResults::Result { .pieces = { std::make_shared<const std::string>(bytes, 'x') }, .bytes = bytes });
}

} // namespace

TEST(Shared, OneRunAnswersAllWhoAskTheSame)
{
    const TestServer server = sharing();
    const auto clients = beginSeveral(server, slow, 5);
    EXPECT_EQ(running(server), 1);
    for (const auto &client : clients) {
        const HttpReply reply = client->receive();
        EXPECT_TRUE(reply.complete);
        EXPECT_EQ(reply.body, slowAnswer);
    }
    const auto lines = server.auditLines("result", 5);
    ASSERT_EQ(lines.size(), 5U);
    for (const std::string &line : lines)
        EXPECT_THAT(line, AllOf(HasSubstr("\"rows\":1"), HasSubstr("\"result\":\"ok\"")));
    // An error is everybody's too, and a run that is over is no answer to what is asked later.
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(server.query("select to_number(text) as x from NUMBERS where n=900").status, 400);
    EXPECT_EQ(server.query(slow, json).body.substr(0, 11), "{\"columns\":");
}

TEST(Shared, WhoGoesAwayTakesNobodyAlong)
{
    const TestServer server = sharing();
    auto clients = beginSeveral(server, slow, 4);
    clients[2]->reset(); // waits for the first
    clients[0]->reset(); // the first; another one runs it now
    for (const std::size_t left : { 1U, 3U })
        EXPECT_EQ(clients[left]->receive().body, slowAnswer);
    int cancelled = 0;
    for (const std::string &line : server.auditLines("result", 4))
        cancelled += line.find("\"result\":\"cancelled\"") != line.npos;
    EXPECT_EQ(cancelled, 2);
    // When all are gone nothing runs on.
    auto endlessOnes = beginSeveral(server, endless, 6);
    endlessOnes.clear();
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; }));
}

TEST(Shared, AClientThatDoesNotReadHoldsNobodyUp)
{
    const TestServer server = sharing([](Configuration &configuration) { configuration.databases[0].sendBuffer = 1 << 20; });
    // More than is shared, and less.
    for (const char *const sql : { "select a.n, b.text from NUMBERS a, NUMBERS b, NUMBERS c where c.n<=2",
             "select a.n, b.text from NUMBERS a, NUMBERS b where a.n<=50" }) {
        const std::string expected = server.query(sql, csv).body;
        const auto neverReads = begin(server, sql);
        std::vector<std::unique_ptr<HttpsClient>> readers;
        for (int number = 0; number < 3; ++number)
            readers.push_back(begin(server, sql, "bob"));
        for (const auto &reader : readers) {
            const HttpReply reply = reader->receive();
            EXPECT_TRUE(reply.complete);
            EXPECT_TRUE(reply.body == expected) << reply.body.size() << " bytes instead of " << expected.size();
        }
        neverReads->reset();
    }
}

TEST(Shared, RowsOfOneReaderAreNeverAnothers)
{
    const TestServer server = sharing([](Configuration &configuration) {
        configuration.databases[0].rules = { { .table = "NUMBERS", .condition = "text in (:sites)" } };
        configuration.databases[0].lookupTables = { "NUMBERS" };
    });
    const auto &users = server.configuration().users;
    runUser(users, "set", "ann", {}, { "site=0000000001", "sites=0000000001" });
    runUser(users, "set", "bob", {}, { "site=0000000002", "sites=0000000002" });
    const auto seenBy = [&](const std::string &user) { return server.query("select n from NUMBERS where n<5", csv, user).body; };
    EXPECT_TRUE(becomesTrue([&] { return seenBy("ann") == "\xEF\xBB\xBFN\r\n1\r\n"; }));
    EXPECT_TRUE(becomesTrue([&] { return seenBy("bob") == "\xEF\xBB\xBFN\r\n2\r\n"; }));
    EXPECT_EQ(seenBy("ann"), "\xEF\xBB\xBFN\r\n1\r\n");
}

TEST(Shared, AnswersFromLookupTablesAloneAreKept)
{
    const engine::test::TemporaryDatabase file("create table SITES (NAME VARCHAR2(9)); create table SCANS (NAME VARCHAR2(9));"
                                               "insert into SITES values ('old'); insert into SCANS values ('old');");
    const TestServer server = sharing([&](Configuration &configuration) {
        configuration.databases[0].url = file.url();
        configuration.databases[0].lookupTables = { "sites" };
    });
    const auto name = [&](const std::string &table) {
        const std::string body = server.query("select a.name from " + table + " a", csv).body;
        return body.substr(std::min(body.size(), body.find('\n') + 1), 3);
    };
    EXPECT_EQ(name("SITES") + name("SCANS"), "oldold");
    execute(file, "update SITES set NAME='new'; update SCANS set NAME='new'");
    EXPECT_EQ(name("SITES"), "old") << "a few seconds old";
    EXPECT_EQ(name("SCANS"), "new") << "whoever asks again sees the scan that was made meanwhile";
    EXPECT_EQ(name("(select NAME from SITES union select NAME from SCANS)"), "new");
}

TEST(Shared, WhatIsKeptIsBoundedInBytesAndInTime)
{
    SharedResults results(1h, 1000);
    const auto ask = [&](const std::string &question) {
        SharedResults::ResultPtr heard;
        if (const auto lead = results.join(question, [&](SharedResults::News, const SharedResults::ResultPtr &told) { heard = told; }))
            lead->answer(resultOf(400), SharedResults::Keep::Yes);
        return heard != nullptr;
    };
    EXPECT_FALSE(ask("one"));
    EXPECT_FALSE(ask("two"));
    EXPECT_TRUE(ask("one"));
    EXPECT_FALSE(ask("three")); // the oldest gives way
    EXPECT_TRUE(ask("two"));
    EXPECT_FALSE(ask("one"));
    SharedResults brief(1ms, 1000);
    brief.join("one", {})->answer(resultOf(1), SharedResults::Keep::Yes);
    std::this_thread::sleep_for(2ms);
    EXPECT_TRUE(brief.join("one", {}));
}

namespace {

std::string addressMetric(const std::string &name, int number)
{
    return "kelvara_address_" + name + "{database=\"main\",address=\"" + std::to_string(number) + "\"}";
}

} // namespace

TEST(Addresses, TheOneWithTheLeastWorkIsAskedAndOneThatIsGoneIsLeftOut)
{
    TemporaryFolder folder;
    const auto second = folder / "second.db";
    std::filesystem::copy_file(numbersDatabase().path(), second);
    const TestServer server([&](Configuration &configuration) { configuration.databases[0].replicas = { "sqlite:" + second.string() }; });
    const auto first = begin(server, endless);
    EXPECT_TRUE(becomesTrue([&] { return server.metric(addressMetric("running", 1)) == 1; }));
    const auto other = begin(server, endless);
    EXPECT_TRUE(becomesTrue([&] { return server.metric(addressMetric("running", 2)) == 1; }));
    first->reset();
    other->reset();
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; }));

    const TestServer half([&](Configuration &configuration) {
        configuration.databases[0].url = "sqlite:" + (folder / "none.db").string();
        configuration.databases[0].replicas = { numbersDatabase().url() };
    });
    EXPECT_EQ(half.query("select n from NUMBERS where n=7", csv).body, "\xEF\xBB\xBFN\r\n7\r\n");
    EXPECT_EQ(half.metric(addressMetric("up", 1)), 0);
    EXPECT_EQ(half.metric(addressMetric("up", 2)), 1);
    const std::string ready = HttpsClient(half.port()).get("/readyz").body;
    EXPECT_THAT(ready, AllOf(HasSubstr("main ok\n"), HasSubstr("main 1 unavailable\n"), HasSubstr("main 2 ok\n")));
    std::filesystem::copy_file(numbersDatabase().path(), folder / "none.db");
    EXPECT_TRUE(becomesTrue([&] {
        half.query("select n from NUMBERS where n=7", csv);
        return half.metric(addressMetric("up", 1)) == 1;
    })) << "one that came back is used again";
}

TEST(Addresses, AStatementThatLosesItsServerBeforeTheFirstRowGoesToTheNextOne)
{
    auto &postgresql = engine::test::PostgresqlServer::instance();
    const std::string rows = "create table NUMBERS (N NUMBER(10)); insert into NUMBERS select generate_series(1,1000)";
    const std::string databases[] = { postgresql.makeDatabase(rows), postgresql.makeDatabase(rows) };
    const TestServer server([&](Configuration &configuration) {
        configuration.databases[0].url = postgresql.readerUrl(databases[0]);
        configuration.databases[0].replicas = { postgresql.readerUrl(databases[1]) };
    });
    const auto end = [&](const std::string &database) {
        return postgresql.run("postgres",
            "select count(pg_terminate_backend(pid)) from pg_stat_activity where state='active' and datname='" + database + "'");
    };
    const auto client = begin(server, slow);
    EXPECT_TRUE(becomesTrue([&] { return end(databases[0]) == "1"; }));
    const HttpReply reply = client->receive();
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, slowAnswer);
}

} // namespace server::test
