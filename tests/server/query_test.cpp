#include "engine/pool/open_engine.h"
#include "tests/server/test_server.h"

#include "packet/stream_reader.h"

#include <gmock/gmock.h>

#include <fstream>
#include <future>
#include <memory>
#include <thread>

namespace server::test {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

packet::PacketPtr decoded(const std::string &body)
{
    packet::StreamReader reader;
    reader.feed(std::as_bytes(std::span(body)));
    return reader.finish();
}

/// A query whose answer nobody has asked for yet.
std::unique_ptr<HttpsClient> begin(const TestServer &server, std::string_view sql, const std::string &user = "ann")
{
    auto client = std::make_unique<HttpsClient>(server.port());
    client->send("POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(sql.size()) + "\r\n" + server.as(user) + "\r\n"
        + std::string(sql));
    return client;
}

double running(const TestServer &server) { return server.metric("kelvara_statements_running{database=\"main\"}"); }
double waiting(const TestServer &server) { return server.metric("kelvara_statements_waiting{database=\"main\"}"); }

} // namespace

TEST(Query, ComesInThreeFormats)
{
    const TestServer server;
    const std::string cells = "select * from CELLS";
    EXPECT_EQ(server.query(cells, csv).body,
        "\xEF\xBB\xBFNAME,FEE,MOMENT,RATIO\r\n\"逗号,引号\"\"换行\n完\",-0.05,2026-03-15 16:30:00,100000000000000000000\r\n,12.5,,0\r\n");
    EXPECT_EQ(server.query(cells, json).body,
        "{\"columns\":[{\"name\":\"NAME\",\"type\":\"text\"},{\"name\":\"FEE\",\"type\":\"number\"},{\"name\":\"MOMENT\",\"type\":\"time\"}"
        ","
        "{\"name\":\"RATIO\",\"type\":\"number\"}],\"rows\":[\n[\"逗号,引号\\\"换行\\u000a完\",-0.05,\"2026-03-15 "
        "16:30:00\",100000000000000000000],\n"
        "[null,12.5,null,0]\n],\"rowCount\":2,\"truncated\":false}\n");
    const auto expected = engine::openEngine(numbersDatabase().url())->query(millionRows, { .rowLimit = 100'000 });
    const TestServer limited([](Configuration &configuration) { configuration.databases[0].rows = 100'000; });
    for (const HttpHeaders headers : { "", "X-Kelvara-Compression: lz4\r\n" }) {
        const HttpReply reply = limited.query(millionRows, headers);
        ASSERT_EQ(reply.headers.at("content-type"), "application/vnd.apache.arrow.stream");
        const packet::PacketPtr result = decoded(reply.body);
        ASSERT_EQ(result->rowCount(), 100'000u);
        EXPECT_TRUE(result->truncated()) << "the row limit is told";
        for (std::size_t row = 0; row < 100'000; row += 7) {
            ASSERT_EQ(result->integer(0, row), expected->integer(0, row));
            ASSERT_EQ(result->text(1, row), expected->text(1, row));
        }
    }
    EXPECT_THAT(limited.query(millionRows, json).body, HasSubstr("\"rowCount\":100000,\"truncated\":true}"));
    EXPECT_FALSE(limited.query(millionRows, csv).complete) << "a CSV file cannot tell that it was cut";
}

TEST(Query, HostileStatementsAreRefusedAndTheServerLives)
{
    const TestServer server;
    HttpsClient client(server.port());
    for (const std::string &statement : engine::test::paragraphs("tests/engine/hostile.txt")) {
        const HttpReply reply = client.post("/v1/query", statement, server.as("ann"));
        EXPECT_EQ(reply.status, 403) << statement;
        EXPECT_THAT(reply.body, HasSubstr("\"code\":\"refused\"")) << statement;
    }
    EXPECT_EQ(client.post("/v1/query", "select n from NUMBERS where n=1", server.as("ann")).status, 200);
}

TEST(Query, AnErrorBeforeTheFirstRowIsToldAndOneAfterwardsBreaksTheStream)
{
    const TestServer server;
    const HttpReply refused = server.query("select to_number(text) as x from NUMBERS where n=900");
    EXPECT_EQ(refused.status, 400);
    EXPECT_THAT(refused.body, AllOf(HasSubstr("\"code\":\"database\""), HasSubstr("ORA-01722")));
    for (const HttpHeaders &headers : { HttpHeaders(), csv, json }) {
        const HttpReply broken = server.query("select a.n, b.text, to_number(a.text) as x from NUMBERS a, NUMBERS b", headers);
        EXPECT_EQ(broken.status, 200);
        EXPECT_GT(broken.body.size(), 1'000'000u);
        EXPECT_FALSE(broken.complete);
    }
    const HttpReply arrow = server.query("select a.n, b.text, to_number(a.text) as x from NUMBERS a, NUMBERS b");
    EXPECT_THROW(decoded(arrow.body), packet::StreamError);
}

TEST(Query, EndsWhenTheClientGoesAway)
{
    const TestServer server([](Configuration &configuration) {
        configuration.databases[0].workers = 2;
        configuration.databases[0].userStatements = 2;
    });
    auto reset = begin(server, endless);
    auto closed = begin(server, endless);
    ASSERT_TRUE(becomesTrue([&] { return running(server) == 2; }));
    auto queued = begin(server, endless);
    ASSERT_TRUE(becomesTrue([&] { return waiting(server) == 1; }));
    queued.reset();
    EXPECT_TRUE(becomesTrue([&] { return waiting(server) == 0; })) << "what waits is withdrawn";
    EXPECT_EQ(running(server), 2);
    reset->reset();
    closed.reset();
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; }));
    // Amid the rows, with the rest waiting to be sent.
    auto reading = begin(server, "select a.n, b.text from NUMBERS a, NUMBERS b, NUMBERS c");
    ASSERT_NE(reading->receiveSome(), "");
    reading->reset();
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; }));
    for (const std::string &line : server.auditLines("result", 4))
        EXPECT_THAT(line, HasSubstr("\"result\":\"cancelled\""));
}

TEST(Query, ALimitThatOneReachesDisturbsNobodyElse)
{
    const TestServer server([](Configuration &configuration) {
        configuration.databases[0].statementTime = 1500ms;
        configuration.databases[0].sendBuffer = 1 << 20;
        configuration.databases.push_back(configuration.databases[0]);
        configuration.databases[1].name = "narrow";
        configuration.databases[1].resultBytes = 1 << 20;
    });
    const auto slow = begin(server, endless);
    const auto neverReads = begin(server, "select a.n, b.text from NUMBERS a, NUMBERS b, NUMBERS c");
    for (int number = 0; number < 20; ++number)
        EXPECT_EQ(server.query("select n from NUMBERS where n=1", csv, "bob").body, "\xEF\xBB\xBFN\r\n1\r\n");
    const HttpReply tooSlow = slow->receive();
    EXPECT_EQ(tooSlow.status, 408);
    EXPECT_THAT(tooSlow.body, HasSubstr("\"code\":\"time_limit\""));
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; })) << "a client that does not read keeps no worker";
    EXPECT_FALSE(neverReads->receive().complete);
    const HttpReply narrow = server.query(millionRows, "X-Kelvara-Database: narrow\r\n");
    EXPECT_TRUE(narrow.status == 400 || !narrow.complete) << "told, or broken off when rows have gone out before";
}

TEST(Query, TextsCannotFillTheMemory)
{
    const TestServer server;
    std::string multiplied = "b.text";
    for (int level = 1; level <= 8; ++level) {
        multiplied = "replace(" + multiplied + ",'0','0000000000')";
        const int status
            = server.query("select " + multiplied + " as x from NUMBERS a, NUMBERS b where " + std::to_string(level) + ">3").status;
        EXPECT_EQ(status, level > 3 ? 400 : 200) << level;
    }
}

TEST(Query, AClientThatDoesNotReadLosesItsConnection)
{
    const TestServer server([](Configuration &configuration) { configuration.writeTime = 300ms; });
    const auto client = begin(server, "select a.n, b.text from NUMBERS a, NUMBERS b, NUMBERS c");
    ASSERT_NE(client->receiveSome(), "");
    EXPECT_TRUE(becomesTrue([&] { return running(server) == 0; }));
    EXPECT_FALSE(client->receive().complete);
}

TEST(Query, OneUserCannotKeepTheOthersWaiting)
{
    const TestServer server([](Configuration &configuration) {
        DatabaseConfiguration &database = configuration.databases[0];
        database.workers = 2;
        database.userStatements = 1;
        database.userQueue = 5;
        database.queue = 8;
    });
    std::vector<std::unique_ptr<HttpsClient>> bulk;
    for (int number = 0; number < 6; ++number) {
        bulk.push_back(begin(server, endless));
        ASSERT_TRUE(becomesTrue([&] { return running(server) + waiting(server) == number + 1; }));
    }
    EXPECT_EQ(running(server), 1);
    EXPECT_EQ(server.query(endless).status, 429) << "the user's own queue is full";
    EXPECT_EQ(server.query("select n from NUMBERS where n=1", {}, "bob").status, 200) << "others have the other worker";
    for (int number = 0; number < 4; ++number) {
        bulk.push_back(begin(server, endless, "bob"));
        ASSERT_TRUE(becomesTrue([&] { return running(server) + waiting(server) == number + 7; }));
    }
    const HttpReply busy = server.query("select n from NUMBERS where n=1", {}, "李明");
    EXPECT_EQ(busy.status, 429) << "the whole queue is full";
    EXPECT_EQ(busy.headers.at("retry-after"), "1");
    bulk.clear();
    EXPECT_TRUE(becomesTrue([&] { return running(server) + waiting(server) == 0; }));
}

TEST(Query, AMissingDatabaseIsToldAndUsedOnceItIsThere)
{
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "later.db";
    const TestServer server([&](Configuration &configuration) { configuration.databases[0].url = "sqlite:" + path.string(); });
    HttpsClient client(server.port());
    const HttpReply missing = client.post("/v1/query", "select n from NUMBERS", server.as("ann"));
    EXPECT_EQ(missing.status, 503);
    EXPECT_THAT(missing.body, HasSubstr("\"code\":\"unavailable\""));
    EXPECT_EQ(client.get("/readyz").status, 503);
    EXPECT_EQ(client.get("/healthz").status, 200);
    std::filesystem::copy_file(numbersDatabase().path(), path);
    EXPECT_TRUE(becomesTrue([&] { return client.get("/readyz").status == 200; }));
    EXPECT_EQ(client.post("/v1/query", "select n from NUMBERS", server.as("ann")).status, 200);
}

TEST(Query, IsWrittenToTheAuditLog)
{
    TestServer server;
    server.query("select n from NUMBERS where n<=3", csv, "李明");
    server.query("drop \"x\"\n\xFF");
    const auto results = server.auditLines("result", 2);
    const auto queries = server.auditLines("query", 2);
    ASSERT_EQ(results.size(), 2u);
    ASSERT_EQ(queries.size(), 2u);
    const auto idOf = [](const std::string &line) { return line.substr(line.find("\"id\":"), 20); };
    for (const std::size_t at : { 0, 1 }) {
        EXPECT_EQ(idOf(queries[at]), idOf(results[at]));
        EXPECT_THAT(queries[at], Not(HasSubstr(server.token("ann").substr(100))));
    }
    EXPECT_THAT(queries[0],
        AllOf(HasSubstr("\"user\":\"李明\",\"address\":\"127.0.0.1\",\"database\":\"main\""),
            HasSubstr("\"statement\":\"select n from NUMBERS where n<=3\"}")));
    EXPECT_THAT(results[0], HasSubstr("\"rows\":3,\"bytes\":15,\"result\":\"ok\""));
    EXPECT_THAT(queries[1], HasSubstr("\"statement\":\"drop \\\"x\\\"\\u000a\xEF\xBF\xBD\"}"));
    EXPECT_THAT(results[1], HasSubstr("\"result\":\"refused\""));
    const std::filesystem::path log = server.configuration().auditLog;
    std::filesystem::rename(log, log.string() + ".1");
    server->reload();
    server.query("select n from NUMBERS where n=4");
    const auto later = server.auditLines("query", 1);
    ASSERT_EQ(later.size(), 1u) << "the old file was let go of";
    EXPECT_THAT(later[0], HasSubstr("n=4"));
}

TEST(Query, TheAddressThatAProxyNamesCountsWhenTheProxyIsTrusted)
{
    const std::pair<HttpHeaders, std::string> cases[] = {
        { "X-Forwarded-For: 1.2.3.4, 10.1.1.1\r\n", "10.1.1.1" }, // what the client wrote itself does not count
        { "X-Forwarded-For: 6.6.6.6\r\nX-Forwarded-For: 10.1.1.1\r\n", "10.1.1.1" },
        { "", "127.0.0.1" },
        { "X-Forwarded-For: 10.1.1.1,\r\n", "127.0.0.1" },
        { "X-Forwarded-For: 10.1.1.1, not an address\r\n", "127.0.0.1" },
    };
    const TestServer trusting([](Configuration &configuration) { configuration.trustedProxies = { "10.0.0.5", "127.0.0.1" }; });
    for (const auto &[headers, address] : cases)
        trusting.query("select n from NUMBERS where n=1", headers);
    const auto lines = trusting.auditLines("query", std::size(cases));
    for (std::size_t at = 0; at < std::size(cases); ++at)
        EXPECT_THAT(lines.at(at), HasSubstr("\"address\":\"" + cases[at].second + "\"")) << cases[at].first;
    const TestServer cautious;
    cautious.query("select n from NUMBERS where n=1", cases[0].first);
    EXPECT_THAT(cautious.auditLines("query", 1)[0], HasSubstr("\"address\":\"127.0.0.1\""));
}

/// Two statements that no limit can stop, as a fault of the database would: they hold all workers.
TEST(Query, ALimitHoldsWhileNoWorkerIsFreeAndReadinessSaysSo)
{
    TestServer server([](Configuration &configuration) {
        configuration.databases[0].workers = 2;
        configuration.databases[0].userStatements = 2;
        configuration.databases[0].statementTime = 1s;
    });
    Database &database = server->service().database("main");
    std::promise<void> release;
    const auto released = release.get_future().share();
    for (int number = 0; number < 2; ++number)
        ASSERT_TRUE(database.pool().submit("stuck", [released] { released.wait(); }));
    ASSERT_TRUE(becomesTrue([&] { return running(server) == 2; }));
    EXPECT_EQ(HttpsClient(server.port()).get("/readyz").status, 200) << "busy is not stuck";
    const auto begun = std::chrono::steady_clock::now();
    const HttpReply late = server.query("select n from NUMBERS where n=1");
    EXPECT_EQ(late.status, 408);
    EXPECT_THAT(late.body, HasSubstr("排队"));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 2s);
    EXPECT_TRUE(becomesTrue([&] { return HttpsClient(server.port()).get("/readyz").status == 503; }));
    release.set_value();
    EXPECT_TRUE(becomesTrue([&] { return HttpsClient(server.port()).get("/readyz").status == 200; }));
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200);
}

TEST(Query, AFileThatIsCutIsNotReadyAndAGoodOneInItsPlaceIs)
{
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "secret-place.db";
    std::filesystem::copy_file(numbersDatabase().path(), path);
    const TestServer server([&](Configuration &configuration) {
        configuration.databases[0].url = "sqlite:" + path.string();
        configuration.databases[0].tables = { "NUMBERS" };
    });
    const auto ready = [&] { return HttpsClient(server.port()).get("/readyz").status; };
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200);
    EXPECT_EQ(ready(), 200);
    std::filesystem::resize_file(path, 0);
    EXPECT_TRUE(becomesTrue([&] { return ready() == 503; }));
    const HttpReply gone = server.query("select n from NUMBERS where n=1");
    EXPECT_NE(gone.status, 200);
    EXPECT_THAT(gone.body, Not(HasSubstr("secret-place"))) << "where it lies is not for users";
    std::filesystem::copy_file(numbersDatabase().path(), folder / "good.db");
    std::filesystem::rename(folder / "good.db", path);
    EXPECT_TRUE(becomesTrue([&] { return ready() == 200; }));
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200) << "without a restart";
}

TEST(Query, AFileThatIsReplacedIsReadAnewAndNobodyNotices)
{
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "today.db";
    std::filesystem::copy_file(numbersDatabase().path(), path);
    const TestServer server([&](Configuration &configuration) { configuration.databases[0].url = "sqlite:" + path.string(); });
    EXPECT_NE(server.query("select SITE from ARRIVALS").status, 200);
    const auto reading = begin(server, "select a.n, b.text from NUMBERS a, NUMBERS b where a.n<=300");
    ASSERT_TRUE(becomesTrue([&] { return running(server) == 1; }));
    const engine::test::TemporaryDatabase next("create table ARRIVALS (SITE VARCHAR2(20)); insert into ARRIVALS values ('北京');"
                                               "create table NUMBERS (N NUMBER(10)); insert into NUMBERS values (7);");
    std::filesystem::copy_file(next.path(), folder / "next.db");
    std::filesystem::rename(folder / "next.db", path);
    EXPECT_TRUE(becomesTrue([&] {
        EXPECT_EQ(server.query("select min(N) from NUMBERS").status, 200);
        return server.query("select SITE from ARRIVALS").status == 200;
    }));
    EXPECT_EQ(decoded(reading->receive().body)->rowCount(), 300'000u) << "what had begun reads the old file to its end";
}

TEST(Query, FinishesWhatRunsBeforeTheServerStops)
{
    TestServer server;
    const auto reading = begin(server, "select a.n, b.text from NUMBERS a, NUMBERS b where a.n<=300");
    const auto idle = std::make_unique<HttpsClient>(server.port());
    EXPECT_EQ(idle->get("/healthz").status, 200);
    ASSERT_TRUE(becomesTrue([&] { return running(server) == 1; }));
    HttpsClient late(server.port());
    EXPECT_EQ(late.get("/readyz").status, 200);
    std::thread stopping([&] { server->stop(); });
    EXPECT_EQ(idle->receiveSome(), "") << "idle connections are closed";
    const auto fresh = std::make_unique<HttpsClient>(server.port());
    const HttpReply refused = fresh->post("/v1/query", "select n from NUMBERS", server.as("bob"));
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused.headers.at("connection"), "close");
    EXPECT_EQ(HttpsClient(server.port()).get("/readyz").status, 503);
    EXPECT_EQ(decoded(reading->receive().body)->rowCount(), 300'000u);
    stopping.join();
}

TEST(Query, IsCancelledWhenTheServerCannotWait)
{
    TestServer server([](Configuration &configuration) { configuration.stopTime = 100ms; });
    const auto client = begin(server, endless);
    ASSERT_TRUE(becomesTrue([&] { return running(server) == 1; }));
    std::thread stopping([&] { server->stop(); });
    const HttpReply reply = client->receive();
    EXPECT_EQ(reply.status, 503);
    EXPECT_THAT(reply.body, HasSubstr("\"code\":\"stopping\""));
    stopping.join();
}

} // namespace server::test
