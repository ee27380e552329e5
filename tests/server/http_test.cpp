#include "tests/server/test_server.h"

#include "server/base/system.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <gmock/gmock.h>
#include <openssl/ssl.h>

#include <memory>
#include <random>
#include <thread>

namespace server::test {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string loginBody(const std::string &user, const std::string &secret)
{
    return "{\"user\":\"" + user + "\",\"password\":\"" + secret + "\"}";
}

std::string tokenIn(const HttpReply &reply)
{
    const std::size_t begin = reply.body.find("\"token\":\"") + 9;
    return reply.body.substr(begin, reply.body.find('"', begin) - begin);
}

} // namespace

TEST(Http, LogsInAndAnswersOnOneConnection)
{
    const TestServer server;
    HttpsClient client(server.port(), server.configuration().certificate.string());
    const HttpReply login = client.post("/v1/login", loginBody("李明", password));
    ASSERT_EQ(login.status, 200) << login.body;
    EXPECT_THAT(login.body, HasSubstr("\"expires\":"));
    const HttpReply time = client.get("/v1/time", bearer(tokenIn(login)));
    EXPECT_EQ(time.status, 200);
    EXPECT_THAT(time.body, StartsWith("{\"time\":\"20"));
    const HttpReply result = client.post("/v1/query?database=main", "select n from NUMBERS where n<3", bearer(tokenIn(login)) + csv);
    EXPECT_EQ(result.body, "\xEF\xBB\xBFN\r\n1\r\n2\r\n");
    EXPECT_EQ(client.get("/healthz").status, 200);
    EXPECT_EQ(client.get("/readyz").status, 200);
    EXPECT_THAT(
        client.get("/healthz").headers["date"], testing::ContainsRegex("^[A-Z][a-z]{2}, [0-9]{2} [A-Z][a-z]{2} 20[0-9]{2} [0-9:]{8} GMT$"));
}

TEST(Http, EncryptsOnlyWithWhatAuthenticatesAsWell)
{
    namespace asio = boost::asio;
    const TestServer server;
    const auto connects = [&](const char *ciphers) {
        asio::io_context io;
        asio::ip::tcp::socket socket(io);
        socket.connect({ asio::ip::address_v4::loopback(), server.port() });
        const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
        SSL_CTX_set_max_proto_version(context.get(), TLS1_2_VERSION);
        SSL_CTX_set_cipher_list(context.get(), ciphers);
        const std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(context.get()), SSL_free);
        SSL_set_fd(ssl.get(), int(socket.native_handle()));
        return SSL_connect(ssl.get()) == 1;
    };
    EXPECT_TRUE(connects("ECDHE-ECDSA-AES128-GCM-SHA256"));
    EXPECT_TRUE(connects("ECDHE-ECDSA-CHACHA20-POLY1305"));
    EXPECT_FALSE(connects("ECDHE-ECDSA-AES128-SHA:ECDHE-ECDSA-AES256-SHA384"));
}

TEST(Http, RefusesWhatItCannotServe)
{
    const TestServer server;
    const auto as = server.as("ann");
    struct Case {
        std::string request;
        int status;
        std::string code;
    };
    const std::string post = "POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: 5\r\n";
    const Case cases[] = {
        { "GET /nothing HTTP/1.1\r\nHost: x\r\n\r\n", 404, "path" },
        { "GET /v1/query HTTP/1.1\r\nHost: x\r\n\r\n", 405, "method" },
        { "DELETE /v1/time HTTP/1.1\r\nHost: x\r\n\r\n", 405, "method" },
        { "GET /v1/time HTTP/1.1\r\nHost: x\r\n\r\n", 401, "token" },
        { post + "\r\n12345", 401, "token" },
        { "POST /v1/query HTTP/1.1\r\nHost: x\r\n" + as + "\r\n", 411, "length" },
        { "POST /v1/query HTTP/1.0\r\nContent-Length: 1\r\n" + as + "\r\n1", 400, "request" },
        { post + as + "Accept: image/png\r\n\r\n12345", 406, "accept" },
        { post + as + "X-Kelvara-Database: other\r\n\r\n12345", 404, "database" },
        { "POST /v1/login HTTP/1.1\r\nHost: x\r\nContent-Length: 2\r\n\r\n{}", 400, "request" },
        { "GET  / HTTP/1.1\r\nHost: x\r\n\r\n", 400, "request" },
        { "GET / HTTP/1.1\r\nHost: x\r\nbad header\r\n\r\n", 400, "request" },
        { "POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: 99999\r\n\r\n", 413, "length" },
        { "POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: -1\r\n\r\n", 400, "request" },
        { "POST /v1/query HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", 400, "request" },
        { "GET / HTTP/1.1\r\nHost: x\r\nX: " + std::string(20'000, 'x') + "\r\n\r\n", 431, "header" },
        { "GET /" + std::string(20'000, 'x'), 431, "header" },
    };
    for (const Case &wrong : cases) {
        HttpsClient client(server.port());
        client.send(wrong.request);
        const HttpReply reply = client.receive();
        EXPECT_EQ(reply.status, wrong.status) << wrong.request.substr(0, 80);
        EXPECT_THAT(reply.body, StartsWith("{\"code\":\"" + wrong.code + "\",\"message\":\"")) << wrong.request.substr(0, 80);
        EXPECT_TRUE(reply.complete);
    }
    EXPECT_EQ(server.query(std::string(64 * 1024 + 1, ' ')).status, 403) << "the gate says how long it may be";
}

TEST(Http, TokensOfOthersAndOldOnesDoNotCount)
{
    const TestServer server;
    HttpsClient client(server.port());
    const auto statusWith = [&](const std::string &token) { return client.get("/v1/time", bearer(token)).status; };
    const std::string good = server.token("ann");
    EXPECT_EQ(statusWith(good), 200);
    EXPECT_EQ(statusWith(server.token("ann", -1)), 401) << "expired";
    EXPECT_EQ(statusWith(server.token("nobody")), 401) << "a user who is gone";
    EXPECT_EQ(statusWith(TokenKey(std::string(32, 'x')).sign({ "ann", 99'999'999'999, "12345678" })), 401) << "another key";
    EXPECT_EQ(statusWith(good.substr(0, good.size() - 2)), 401);
    EXPECT_EQ(statusWith(good + "00"), 401);
    EXPECT_EQ(statusWith(""), 401);
    EXPECT_EQ(client.get("/v1/time", "Authorization: Basic " + good + "\r\n").status, 401);
}

TEST(Http, WrongPasswordsAreSlowedDownAndUnknownUsersLookTheSame)
{
    const TestServer server;
    HttpsClient client(server.port());
    const HttpReply wrong = client.post("/v1/login", loginBody("ann", "falsch"));
    const HttpReply unknown = client.post("/v1/login", loginBody("nobody", "falsch"));
    EXPECT_EQ(wrong.status, 401);
    EXPECT_EQ(wrong.body, unknown.body);
    EXPECT_EQ(server.metric("kelvara_password_checks_total"), 2) << "unknown users cost as much";
    for (const std::string user : { "ann", "nobody" }) {
        HttpReply last;
        for (int tries = 0; tries < 100 && last.status != 429; ++tries)
            last = client.post("/v1/login", loginBody(user, "falsch"));
        ASSERT_EQ(last.status, 429) << user;
        EXPECT_GE(std::stoi(last.headers["retry-after"]), 1);
        EXPECT_EQ(client.post("/v1/login", loginBody(user, password)).status, 429) << "a right one has to wait as well";
    }
    EXPECT_LE(server.metric("kelvara_password_checks_total"), 2 * LoginThrottle::here.free);
    EXPECT_EQ(client.post("/v1/login", loginBody("bob", password)).status, 200) << "others are not slowed down";
}

TEST(Http, AHundredThousandWrongPasswordsCostAlmostNothing)
{
    constexpr int tries = 100'000;
    constexpr int atOnce = 200;
    const TestServer server;
    HttpsClient client(server.port());
    const std::string body = loginBody("ann", "falsch");
    const std::string request = "POST /v1/login HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    std::string requests;
    for (int number = 0; number < atOnce; ++number)
        requests += request;
    for (int sent = 0; sent < tries; sent += atOnce) {
        client.send(requests);
        for (int number = 0; number < atOnce; ++number) {
            const int status = client.receive().status;
            ASSERT_TRUE(status == 401 || status == 429) << status;
        }
    }
    EXPECT_LE(server.metric("kelvara_password_checks_total"), 2 * LoginThrottle::here.free);
    EXPECT_EQ(client.post("/v1/login", loginBody("bob", password)).status, 200) << "others are let in as ever";
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200);
}

TEST(Http, AnswersRequestsInTheOrderInWhichTheyWereSent)
{
    const TestServer server;
    HttpsClient client(server.port());
    const std::string body = "select count(*) as n from NUMBERS";
    std::string requests;
    for (int number = 0; number < 5; ++number)
        requests += "GET /healthz HTTP/1.1\r\nHost: x\r\n\r\nPOST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: "
            + std::to_string(body.size()) + "\r\n" + server.as("ann") + csv + "\r\n" + body;
    client.send(requests);
    for (int number = 0; number < 5; ++number) {
        EXPECT_EQ(client.receive().body, "ok\n");
        EXPECT_THAT(client.receive().body, HasSubstr("1000"));
    }
    client.send("POST /v1/query HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n" + server.as("ann") + csv
        + "\r\n7\r\nselect \r\n3;x=y\r\nn f\r\n10\r\nrom NUMBERS wher\r\n5\r\ne n=1\r\n0\r\n\r\n");
    EXPECT_THAT(client.receive().body, HasSubstr("N\r\n1\r\n"));
    client.send("POST /v1/query HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: " + std::to_string(body.size()) + "\r\n"
        + server.as("ann") + "\r\n");
    EXPECT_THAT(client.receiveSome(), StartsWith("HTTP/1.1 100"));
    client.send(body);
    EXPECT_EQ(client.receive().status, 200);
    client.send("GET /healthz HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(client.receive().headers["connection"], "close");
    EXPECT_EQ(client.receiveSome(), "");
}

TEST(Http, EndsConnectionsThatAreTooSlow)
{
    constexpr int connections = 1000;
    raiseFileLimit();
    const TestServer server([](Configuration &configuration) {
        configuration.headerTime = configuration.bodyTime = configuration.idleTime = 300ms;
        configuration.connectionsPerAddress = 2 * connections;
    });
    std::vector<std::unique_ptr<HttpsClient>> slow;
    for (int number = 0; number < connections; ++number) {
        slow.push_back(std::make_unique<HttpsClient>(server.port()));
        if (number % 3 == 1)
            slow.back()->send("GET /hea");
        if (number % 3 == 2)
            slow.back()->send("POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nhalf");
    }
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200) << "nobody else has to wait";
    for (std::size_t number = 0; number < slow.size(); ++number)
        EXPECT_EQ(slow[number]->receive().status, number % 3 == 0 ? 0 : 408);
    slow.clear();
    EXPECT_TRUE(becomesTrue([&] { return server.metric("kelvara_connections") == 1; }));
}

TEST(Http, ALimitOfConnectionsHoldsForOneAddress)
{
    const TestServer server([](Configuration &configuration) { configuration.connectionsPerAddress = 3; });
    HttpsClient first(server.port());
    HttpsClient second(server.port());
    auto third = std::make_unique<HttpsClient>(server.port());
    EXPECT_EQ(third->get("/healthz").status, 200);
    EXPECT_ANY_THROW(HttpsClient(server.port()));
    EXPECT_EQ(first.get("/healthz").status, 200);
    third.reset();
    EXPECT_TRUE(becomesTrue([&] {
        try {
            return HttpsClient(server.port()).get("/healthz").status == 200;
        } catch (const std::exception &) {
            return false;
        }
    }));
}

TEST(Http, SomeAddressesCannotTakeAllConnections)
{
    namespace asio = boost::asio;
    const TestServer server([](Configuration &configuration) {
        configuration.connections = 40;
        configuration.connectionsPerAddress = 10;
    });
    asio::io_context io;
    std::vector<asio::ip::tcp::socket> strangers;
    for (int number = 0; number < 60; ++number) {
        strangers.emplace_back(io, asio::ip::tcp::v4());
        strangers.back().bind({ asio::ip::make_address("127.0.1." + std::to_string(1 + number % 6)), 0 });
        strangers.back().connect({ asio::ip::address_v4::loopback(), server.port() });
    }
    std::vector<std::unique_ptr<HttpsClient>> honest;
    for (int number = 0; number < 3; ++number) {
        honest.push_back(std::make_unique<HttpsClient>(server.port()));
        EXPECT_EQ(honest.back()->post("/v1/query", "select n from NUMBERS where n=1", server.as("ann")).status, 200);
    }
    for (const auto &client : honest)
        EXPECT_EQ(client->get("/healthz").status, 200) << "whoever has few keeps them";
    EXPECT_LE(server.metric("kelvara_connections"), 41);
}

TEST(Http, ConnectionsOfNobodyAreNotKeptLong)
{
    const TestServer server([](Configuration &configuration) { configuration.strangerTime = 300ms; });
    HttpsClient known(server.port());
    HttpsClient stranger(server.port());
    EXPECT_EQ(known.get("/v1/time", server.as("ann")).status, 200);
    EXPECT_EQ(stranger.get("/healthz").status, 200);
    EXPECT_EQ(stranger.receiveSome(), "");
    EXPECT_EQ(known.get("/healthz").status, 200);
}

TEST(Http, NamesOfDatabasesAreNotForEverybody)
{
    const TestServer server([](Configuration &configuration) {
        configuration.trustedProxies = { "127.0.0.1" };
        configuration.monitors = { "10.0.0.9" };
    });
    HttpsClient client(server.port());
    const HttpHeaders far = "X-Forwarded-For: 10.0.0.8\r\n";
    EXPECT_EQ(client.get("/metrics", far).status, 403);
    EXPECT_EQ(client.get("/readyz", far).body, "ok\n");
    for (const HttpHeaders &headers : { HttpHeaders(), HttpHeaders("X-Forwarded-For: 10.0.0.9\r\n"), far + server.as("ann") }) {
        EXPECT_EQ(client.get("/metrics", headers).status, 200);
        EXPECT_EQ(client.get("/readyz", headers).body, "main ok\n");
    }
}

TEST(Http, LivesThroughRandomBytes)
{
    const TestServer server([](Configuration &configuration) { configuration.headerTime = configuration.bodyTime = 200ms; });
    std::mt19937 random(7);
    const std::string request
        = "POST /v1/query HTTP/1.1\r\nHost: x\r\n" + server.as("ann") + "Content-Length: 31\r\n\r\nselect n from NUMBERS where n=1 ";
    std::vector<std::unique_ptr<HttpsClient>> clients;
    for (int round = 0; round < 300; ++round) {
        std::string bytes = request;
        for (unsigned change = random() % 8 + 1; change > 0; --change)
            bytes[random() % bytes.size()] = char(random());
        if (round % 10 == 0)
            std::generate(bytes.begin(), bytes.end(), [&] { return char(random()); });
        clients.push_back(std::make_unique<HttpsClient>(server.port()));
        clients.back()->send(bytes.substr(0, 1 + random() % bytes.size()));
    }
    for (const auto &client : clients)
        EXPECT_NE(client->receive().status, 0);
    EXPECT_EQ(server.query("select n from NUMBERS where n=1").status, 200);
}

} // namespace server::test
