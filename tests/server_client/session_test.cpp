#include "engine/pool/open_engine.h"
#include "server_client/server_session.h"

#include "server/tls/certificate.h"
#include "tests/server/test_server.h"
#include "tests/support/cutting_proxy.h"

#include <gmock/gmock.h>

#include <fstream>
#include <random>
#include <sstream>
#include <thread>

namespace {

using namespace std::chrono_literals;
using server::test::becomesTrue;
using server::test::TestServer;
using server_client::Failure;
using server_client::ServerSession;
using testing::HasSubstr;

constexpr auto fewRows = "select n, text from NUMBERS order by n";
constexpr auto manyRows = "select a.n, b.text from NUMBERS a, NUMBERS b where b.n<=100";

std::string textOf(const std::filesystem::path &file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

server_client::SessionOptions optionsFor(const TestServer &trusted, const std::vector<std::uint16_t> &ports)
{
    server_client::SessionOptions options { .addresses = {}, .authorities = { textOf(trusted.configuration().certificate) } };
    for (const std::uint16_t port : ports)
        options.addresses.push_back({ "127.0.0.1", port });
    return options;
}

/// What a call fails with; nothing when it does not.
template <class Call>
std::optional<server_client::Error> failureOf(Call &&call)
{
    try {
        call();
    } catch (const server_client::Error &error) {
        return error;
    }
    return std::nullopt;
}

packet::PacketPtr run(ServerSession &session, const char *sql) { return session.query(sql, {}, {}); }

/// All cells of both columns, for comparison.
std::string cellsOf(const packet::Packet &rows)
{
    std::string cells;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        rows.appendText(0, row, cells);
        cells += ' ';
        rows.appendText(1, row, cells);
        cells += '\n';
    }
    return cells;
}

} // namespace

TEST(ServerAddress, IsReadFromWhatPeopleWrite)
{
    using server_client::ServerAddress;
    EXPECT_EQ(ServerAddress::parse("https://center.example:9000/").text(), "center.example:9000");
    EXPECT_EQ(ServerAddress::parse("10.0.0.1").text(), "10.0.0.1:8866");
    EXPECT_EQ(ServerAddress::parse("https://[::1]:9000").text(), "[::1]:9000");
    for (const char *wrong : { "", "https://", "http://a", "a:b", "a:0", "a:70000", "a:1:2", "[::1", "a/b", "user@host", "a b" })
        EXPECT_THROW(ServerAddress::parse(wrong), std::invalid_argument) << wrong;
}

TEST(Session, LogsInAndFetchesWhatTheDatabaseHolds)
{
    const TestServer server;
    ServerSession session(optionsFor(server, { server.port() }));
    session.login("李明", server::test::password);
    std::int64_t told = 0;
    const packet::PacketPtr rows = session.query(manyRows, {}, [&told](std::int64_t count) { told = count; });
    const auto expected = engine::openEngine(server::test::numbersDatabase().url())->query(manyRows);
    EXPECT_EQ(cellsOf(*rows), cellsOf(*expected));
    EXPECT_EQ(told, 100'000);
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(double(session.serverTime() - now) / 86'400, 0, 1) << "within the difference of time zones";
    EXPECT_EQ(server.metric("kelvara_statements_running{database=\"main\"}"), 0);

    const auto refused = failureOf([&] { run(session, "select to_number(text) as x from NUMBERS where n=900"); });
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->failure(), Failure::Refused);
    EXPECT_THAT(refused->what(), HasSubstr("ORA-01722")) << "the database's own words";
    EXPECT_EQ(failureOf([&] { run(session, "delete from NUMBERS"); })->failure(), Failure::Refused);
}

TEST(Session, RefusesWrongPasswordsAndServersThatCannotProveWhoTheyAre)
{
    const TestServer server;
    const TestServer other;
    ServerSession session(optionsFor(server, { server.port() }));
    EXPECT_EQ(failureOf([&] { session.login("ann", "falsch"); })->failure(), Failure::Login);
    ServerSession deceived(optionsFor(other, { server.port() }));
    EXPECT_EQ(failureOf([&] { deceived.login("ann", server::test::password); })->failure(), Failure::Certificate);
    // The certificate is for 127.0.0.1, not for every address of this computer.
    auto elsewhere = optionsFor(server, { server.port() });
    elsewhere.addresses[0].host = "127.0.0.2";
    ServerSession unnamed(elsewhere);
    const auto failure = failureOf([&] { unnamed.login("ann", server::test::password); });
    ASSERT_TRUE(failure);
    EXPECT_NE(failure->failure(), Failure::Login);
    EXPECT_THROW(ServerSession({ .addresses = { {} }, .authorities = { "no certificate" } }), server_client::Error);
}

TEST(Session, RenewsATokenThatHasRunOut)
{
    const TestServer server([](server::Configuration &configuration) { configuration.tokenLife = 1s; });
    ServerSession session(optionsFor(server, { server.port() }));
    session.login("ann", server::test::password);
    std::this_thread::sleep_for(2100ms);
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
}

TEST(Session, CancelsAtTheServer)
{
    const TestServer server;
    ServerSession session(optionsFor(server, { server.port() }));
    session.login("ann", server::test::password);
    const auto running = [&server] { return server.metric("kelvara_statements_running{database=\"main\"}"); };
    std::stop_source stop;
    const std::jthread canceller([&] {
        EXPECT_TRUE(becomesTrue([&] { return running() == 1; }));
        stop.request_stop();
    });
    const auto failure = failureOf([&] { session.query(server::test::endless, stop.get_token(), {}); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->failure(), Failure::Cancelled);
    EXPECT_TRUE(becomesTrue([&] { return running() == 0; }));
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
}

TEST(Session, ALineThatBreaksOnceIsNotNoticedAndOneThatBreaksAgainGivesNoPartOfAResult)
{
    const TestServer server;
    CuttingProxy broken(server.port());
    const std::string whole = cellsOf(*engine::openEngine(server::test::numbersDatabase().url())->query(manyRows));
    constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
    std::mt19937 random(20261123);
    int takenOver = 0;
    for (int time = 0; time < 40; ++time) {
        std::string told;
        broken.cutAfter(never);
        ServerSession session(
            optionsFor(server, { broken.port(), server.port() }), [&told](const std::string &address) { told = address; });
        session.login("ann", server::test::password);
        // Somewhere in the header, the rows or the end mark.
        broken.cutAfter(time < 10 ? random() % 1000 : random() % 2'500'000);
        ASSERT_EQ(cellsOf(*run(session, manyRows)), whole);
        takenOver += told == "127.0.0.1:" + std::to_string(server.port()) ? 1 : 0;
    }
    EXPECT_GT(takenOver, 10);

    ServerSession alone(optionsFor(server, { broken.port() }));
    broken.cutAfter(never);
    alone.login("ann", server::test::password);
    for (int time = 0; time < 20; ++time) {
        broken.cutAfter(random() % 400'000);
        const auto failure = failureOf([&] { run(alone, manyRows); });
        ASSERT_TRUE(failure);
        ASSERT_EQ(failure->failure(), Failure::Unreachable);
    }
}

TEST(Session, ASilentLineIsGivenUpForTheNextServer)
{
    const TestServer server;
    CuttingProxy silent(server.port());
    auto options = optionsFor(server, { silent.port(), server.port() });
    options.timeouts = { .connect = 500ms, .answer = 500ms, .silence = 500ms };
    ServerSession session(options);
    session.login("ann", server::test::password);
    silent.freeze();
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
}

TEST(Session, TellsWhenNoServerAnswersAndWhenOneDoesAgain)
{
    std::vector<std::string> told;
    auto server = std::make_unique<TestServer>();
    const auto options = optionsFor(*server, { server->port() });
    ServerSession session(options, [&told](const std::string &address) { told.push_back(address); });
    session.login("ann", server::test::password);
    server.reset();
    EXPECT_EQ(failureOf([&] { run(session, fewRows); })->failure(), Failure::Unreachable);
    EXPECT_EQ(told, (std::vector<std::string> { options.addresses[0].text(), "" }));
}
