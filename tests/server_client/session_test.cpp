#include "engine/pool/open_engine.h"
#include "server_client/server_session.h"

#include "server/tls/tls_context.h"
#include "server/users/user_file.h"
#include "tests/server/test_server.h"
#include "tests/support/cutting_proxy.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <future>
#include <limits>
#include <memory>
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

/// Has the certificate of another server, lets everybody in, and answers every query with the same bytes before it closes.
class FakeServer {
public:
    /// With a pause the bytes come in ten parts.
    FakeServer(const TestServer &other, std::string answer, std::chrono::milliseconds pause = {})
        : m_context(server::makeTlsContext(other.configuration().certificate.string(), other.configuration().privateKey.string()))
        , m_answer(std::move(answer))
        , m_pause(pause)
        , m_thread([this] { serve(); })
    {
    }
    FakeServer(const FakeServer &) = delete;
    ~FakeServer()
    {
        m_stops = true;
        tcp::socket(m_io).connect({ boost::asio::ip::address_v4::loopback(), port() });
        m_thread.join();
    }
    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }
    int queries() const { return m_queries; }

private:
    using tcp = boost::asio::ip::tcp;

    void serve()
    {
        while (true) {
            tcp::socket socket = m_acceptor.accept();
            if (m_stops)
                return;
            const std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(m_context.get()), SSL_free);
            SSL_set_fd(ssl.get(), int(socket.native_handle()));
            if (SSL_accept(ssl.get()) == 1)
                serve(*ssl);
        }
    }
    void serve(SSL &ssl)
    {
        std::string bytes(16 * 1024, '\0');
        std::size_t size = 0;
        if (SSL_read_ex(&ssl, bytes.data(), bytes.size(), &size) != 1)
            return;
        const bool isQuery = bytes.starts_with("POST /v1/query");
        m_queries += isQuery ? 1 : 0;
        const std::string token = "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 13\r\n\r\n{\"token\":\"t\"}";
        const std::string &answer = isQuery ? m_answer : token;
        const std::size_t part = m_pause.count() > 0 && isQuery ? answer.size() / 10 + 1 : answer.size();
        for (std::size_t at = 0; at < answer.size(); at += part) {
            SSL_write(&ssl, answer.data() + at, int(std::min(part, answer.size() - at)));
            std::this_thread::sleep_for(m_pause);
        }
        SSL_shutdown(&ssl);
    }

    boost::asio::io_context m_io {};
    tcp::acceptor m_acceptor { m_io, { boost::asio::ip::address_v4::loopback(), 0 } };
    server::TlsContext m_context;
    std::string m_answer;
    std::chrono::milliseconds m_pause;
    std::atomic<int> m_queries { 0 };
    std::atomic<bool> m_stops { false };
    std::thread m_thread; ///< the last member: it uses the others
};

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

TEST(Session, EndsWithItsTokenAndKeepsNoPassword)
{
    const TestServer server([](server::Configuration &configuration) { configuration.tokenLife = 1s; });
    ServerSession session(optionsFor(server, { server.port() }));
    EXPECT_EQ(failureOf([&] { run(session, fewRows); })->failure(), Failure::SessionEnded);
    session.login("ann", server::test::password);
    std::this_thread::sleep_for(2100ms);
    for (const char *reason : { "过期", "没有登录" }) {
        const auto failure = failureOf([&] { run(session, fewRows); });
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->failure(), Failure::SessionEnded);
        EXPECT_THAT(failure->what(), HasSubstr(reason));
    }
    EXPECT_EQ(failureOf([&] { session.login("ann", "falsch"); })->failure(), Failure::Login);
    session.login("ann", server::test::password);
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
}

TEST(Session, ChangesThePasswordAndGoesOn)
{
    const TestServer server;
    server::test::runUser(
        server.configuration().users, "set", "ann", {}, { "must_change=yes", "site=O'Neill", "sites=O'Neill,甲", "screens=frm_A=101" });
    ServerSession session(optionsFor(server, { server.port() }));
    ASSERT_TRUE(becomesTrue([&] { return session.login("ann", server::test::password).mustChangePassword; }));
    ServerSession other(optionsFor(server, { server.port() }));
    const auto account = other.login("ann", server::test::password);
    EXPECT_EQ(account.site, "O'Neill");
    EXPECT_EQ(account.sites, (std::vector<std::string> { "O'Neill", "甲" }));
    EXPECT_EQ(account.screens.at("frm_A"), "101");
    const auto refused = failureOf([&] { session.changePassword("falsch", "new password"); });
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->failure(), Failure::Refused);
    EXPECT_FALSE(session.changePassword(server::test::password, "new password").mustChangePassword);
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
    EXPECT_THAT(failureOf([&] { run(other, fewRows); })->what(), HasSubstr("密码已经更改"));
    session.reportRefusedScreen("frm_\"B\"111");
    session.logout({});
    EXPECT_THAT(server.auditLines("screen", 1).front(), HasSubstr("frm_\\\"B\\\"111"));
    EXPECT_EQ(server.auditLines("logout", 1).size(), 1U);
    EXPECT_EQ(failureOf([&] { run(session, fewRows); })->failure(), Failure::SessionEnded);
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

TEST(Session, ALineThatBreaksGivesTheWholeResultOrNone)
{
    const TestServer server;
    CuttingProxy broken(server.port());
    const std::string whole = cellsOf(*engine::openEngine(server::test::numbersDatabase().url())->query(manyRows));
    constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
    std::mt19937 random(20261123);
    int takenOver = 0;
    int failed = 0;
    for (int time = 0; time < 40; ++time) {
        std::string told;
        broken.cutAfter(never);
        ServerSession session(
            optionsFor(server, { broken.port(), server.port() }), [&told](const std::string &address) { told = address; });
        session.login("ann", server::test::password);
        // Before the answer, or somewhere in the rows or the end mark.
        const bool isEarly = time < 10;
        broken.cutAfter(isEarly ? random() % 20 : 1000 + random() % 2'500'000);
        try {
            ASSERT_EQ(cellsOf(*run(session, manyRows)), whole);
            takenOver += told == "127.0.0.1:" + std::to_string(server.port()) ? 1 : 0;
        } catch (const server_client::Error &error) {
            ASSERT_FALSE(isEarly) << "what has not begun to come is asked for again: " << error.what();
            EXPECT_EQ(error.failure(), Failure::Unreachable);
            ++failed;
        }
    }
    EXPECT_EQ(takenOver, 10);
    EXPECT_GT(failed, 10);
    const auto asked = server.auditLines("query", 50).size();
    EXPECT_EQ(asked, 50u) << "40 statements, 10 of them twice";
}

TEST(Session, AStatementThatEndsServersIsNotCarriedToAllOfThem)
{
    const TestServer trusted;
    std::vector<std::unique_ptr<FakeServer>> servers;
    std::vector<std::uint16_t> ports;
    for (int number = 0; number < 3; ++number) {
        servers.push_back(std::make_unique<FakeServer>(trusted, ""));
        ports.push_back(servers.back()->port());
    }
    ServerSession session(optionsFor(trusted, ports));
    session.login("ann", server::test::password);
    const auto failure = failureOf([&] { run(session, fewRows); });
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->what(), HasSubstr("没有自动再发"));
    EXPECT_EQ(servers[0]->queries() + servers[1]->queries() + servers[2]->queries(), 2);
}

TEST(Session, ARefusalInBetweenDoesNotMakeALostStatementNew)
{
    const TestServer trusted;
    FakeServer first(trusted, "");
    FakeServer refusing(trusted, "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nContent-Length: 0\r\n\r\n");
    FakeServer third(trusted, "");
    ServerSession session(optionsFor(trusted, { first.port(), refusing.port(), third.port() }));
    session.login("ann", server::test::password);
    EXPECT_EQ(failureOf([&] { run(session, fewRows); })->failure(), Failure::Unreachable);
    EXPECT_EQ(first.queries() + third.queries(), 2);
    EXPECT_EQ(refusing.queries(), 1);
}

TEST(Session, ADamagedResultIsNotAskedForAgain)
{
    const TestServer trusted;
    FakeServer damaged(trusted, "HTTP/1.1 200 OK\r\nContent-Length: 24\r\n\r\nthis is no Arrow stream!");
    ServerSession session(optionsFor(trusted, { damaged.port() }));
    session.login("ann", server::test::password);
    const auto failure = failureOf([&] { run(session, fewRows); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->failure(), Failure::Result);
    EXPECT_EQ(damaged.queries(), 1);
}

TEST(Session, ASlowResultIsTakenAsLongAsItFlows)
{
    const TestServer trusted;
    const std::string rows = trusted.query("select n, text from NUMBERS").body;
    FakeServer slow(trusted, "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(rows.size()) + "\r\n\r\n" + rows, 100ms);
    auto options = optionsFor(trusted, { slow.port() });
    options.timeouts.silence = 500ms;
    ServerSession session(options);
    session.login("ann", server::test::password);
    EXPECT_EQ(run(session, fewRows)->rowCount(), 1000U);
}

TEST(Session, AResultLargerThanIsTakenIsRefusedOnce)
{
    const TestServer server;
    for (const bool byRows : { true, false }) {
        auto options = optionsFor(server, { server.port() });
        (byRows ? options.mostRows : options.mostBytes) = 20'000;
        ServerSession session(options);
        session.login("ann", server::test::password);
        const auto failure = failureOf([&] { run(session, manyRows); });
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->failure(), Failure::Result);
        EXPECT_THAT(failure->what(), HasSubstr("上限"));
        EXPECT_EQ(run(session, "select n from NUMBERS where n<3")->rowCount(), 2U) << "the session goes on";
    }
    EXPECT_EQ(server.auditLines("query", 4).size(), 4u);
}

TEST(Session, AWholeOfficeGetsInAtEight)
{
    // A sanitizer makes the check of a password ten times slower, and people give up after half a minute: so many fewer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int people = 60;
#else
    constexpr int people = 150;
#endif
    const TestServer server([](server::Configuration &configuration) { configuration.loginQueue = 40; });
    server::Users users;
    for (int number = 0; number < people; ++number)
        users["user" + std::to_string(number)] = server::readUsers(server.configuration().users).at("ann");
    server::writeUsers(server.configuration().users, users);
    ServerSession first(optionsFor(server, { server.port() }));
    ASSERT_TRUE(becomesTrue([&] { return !failureOf([&] { first.login("user0", server::test::password); }); }));
    std::atomic<int> in { 0 };
    std::vector<std::thread> threads;
    for (int number = 0; number < people; ++number) {
        threads.emplace_back([&, name = "user" + std::to_string(number)] {
            auto options = optionsFor(server, { server.port() });
            options.timeouts.connect = 30s; // all handshakes at once
            ServerSession session(options);
            const auto failure = failureOf([&] { session.login(name, server::test::password); });
            EXPECT_FALSE(failure) << failure->what();
            in += failure ? 0 : 1;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(in, people);
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

TEST(Session, AStatementWaitsForTheOnlyServerToStartAgain)
{
    const TestServer files; // certificate, users and token key stay
    server::Configuration configuration = files.configuration();
    auto server = std::make_unique<server::Server>(configuration);
    configuration.port = server->port();
    auto options = optionsFor(files, { configuration.port });
    options.patience = 1min;
    ServerSession session(options);
    session.login("ann", server::test::password);
    server->stop();
    auto rows = std::async([&] { return run(session, fewRows)->rowCount(); });
    EXPECT_EQ(rows.wait_for(300ms), std::future_status::timeout) << "it refuses, and nobody else is there";
    server.reset();
    const server::Server again(configuration);
    EXPECT_EQ(rows.get(), 1000U);
}
