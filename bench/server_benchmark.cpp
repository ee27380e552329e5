// A million arrival scans through the server and TLS into a packet, beside reading them bare from SQLite; the sending alone beside
// a bare TLS connection; small queries of many clients beside a constant answer; and what idle connections hold in memory.

#include "bench/pairs.h"
#include "bench/resident_memory.h"
#include "bench/scan_table.h"
#include "packet/stream_reader.h"
#include "server/base/system.h"
#include "server/server.h"
#include "server/tls/certificate.h"
#include "server/tls/tls_context.h"
#include "server/tls/tls_stream.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/support/https_client.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <thread>

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr int rounds = 7;
constexpr int clients = 64;
constexpr int requestsOfClient = 60;
constexpr int idleConnections = 1000;
constexpr auto oneRow = "select SCAN_SITE from TAB_SCAN_COME where BILL_CODE='7710000000000' and rownum=1";

[[noreturn]] void failWith(const std::string &message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

void runScript(const std::string &path, const std::string &script)
{
    sqlite3 *database = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK
        || sqlite3_exec(database, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        failWith(sqlite3_errmsg(database));
    sqlite3_close(database);
}

/// A server on a free port with the scans as its database.
class BenchServer {
public:
    explicit BenchServer(const QTemporaryDir &directory)
    {
        const auto file = [&](const char *name) { return directory.filePath(QString::fromLatin1(name)).toStdString(); };
        m_configuration.address = "127.0.0.1";
        m_configuration.port = 0;
        m_configuration.certificate = file("server.crt");
        m_configuration.privateKey = file("server.key");
        m_configuration.users = file("users");
        m_configuration.tokenKey = std::string(server::TokenKey::shortestSecret, 'k');
        m_configuration.connectionsPerAddress = 2 * idleConnections;
        m_configuration.databases.push_back({ "main", "sqlite:" + file("scans.db") });
        m_configuration.databases[0].userStatements = m_configuration.databases[0].workers;
        m_configuration.databases[0].userQueue = clients;
        server::makeLocalCertificate(m_configuration.certificate, m_configuration.privateKey);
        const std::string hash = server::hashPassword("no matter");
        m_generation = server::generationOf(hash);
        server::writeUsers(m_configuration.users, { { "bench", { .hash = hash } } });
        m_server = std::make_unique<server::Server>(m_configuration);
    }

    std::uint16_t port() const { return m_server->port(); }
    const server::Configuration &configuration() const { return m_configuration; }
    HttpHeaders headers() const
    {
        constexpr std::int64_t farAway = 99'999'999'999;
        return bearer(server::TokenKey(m_configuration.tokenKey).sign({ "bench", farAway, m_generation }));
    }

private:
    server::Configuration m_configuration;
    std::string m_generation;
    std::unique_ptr<server::Server> m_server;
};

void loadThrough(HttpsClient &client, const HttpHeaders &headers)
{
    packet::StreamReader reader;
    const std::string_view sql = allScans;
    client.send("POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(sql.size()) + "\r\n" + headers + "\r\n"
        + std::string(sql));
    client.receive([&](std::string_view part) { reader.feed(std::as_bytes(std::span(part))); });
    if (const auto result = reader.finish(); result->rowCount() != scanCount)
        failWith("received " + std::to_string(result->rowCount()) + " rows");
}

void compareLoads(const BenchServer &server, const std::string &path)
{
    sqlite3 *bare = nullptr;
    sqlite3_open_v2(path.c_str(), &bare, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    sqlite3_exec(bare, "pragma cache_size=-65536", nullptr, nullptr, nullptr); // as the engine has it
    HttpsClient client(server.port());
    std::vector<Side> sides {
        { "bare", [&] { readScansBare(bare); } },
        { "through the server", [&] { loadThrough(client, server.headers()); } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(sides[1], sides[0], 1.2);
    sqlite3_close(bare);
}

/// Sends bytes from one thread to another over TLS on loopback: the sender is given an accepted socket.
void transfer(const std::function<void(tcp::socket)> &send, std::uint64_t expected)
{
    asio::io_context io;
    tcp::acceptor acceptor(io, { asio::ip::address_v4::loopback(), 0 });
    std::thread sender([&] { send(acceptor.accept()); });
    tcp::socket socket(io);
    socket.connect(acceptor.local_endpoint());
    SSL_CTX *const context = SSL_CTX_new(TLS_client_method());
    SSL *const ssl = SSL_new(context);
    SSL_set_fd(ssl, int(socket.native_handle()));
    std::vector<char> part(256 * 1024);
    std::uint64_t received = 0;
    if (SSL_connect(ssl) == 1) {
        for (std::size_t count = 0; received < expected && SSL_read_ex(ssl, part.data(), part.size(), &count) == 1;)
            received += count;
    }
    SSL_free(ssl);
    SSL_CTX_free(context);
    socket.close();
    sender.join();
    if (received != expected)
        failWith("received " + std::to_string(received) + " bytes");
}

constexpr std::size_t pieceSize = 256 * 1024;

void sendBare(tcp::socket socket, SSL_CTX &context, const std::string &bytes)
{
    SSL *const ssl = SSL_new(&context);
    SSL_set_fd(ssl, int(socket.native_handle()));
    SSL_accept(ssl);
    for (std::size_t begin = 0; begin < bytes.size(); begin += pieceSize)
        SSL_write(ssl, bytes.data() + begin, int(std::min(pieceSize, bytes.size() - begin)));
    SSL_free(ssl);
}

asio::awaitable<void> sendAll(server::TlsStream &stream, const std::string &bytes)
{
    co_await stream.handshake();
    for (std::size_t begin = 0; begin < bytes.size(); begin += pieceSize) {
        stream.add(std::string_view(bytes).substr(begin, pieceSize));
        co_await stream.flush();
    }
}

void sendAsServer(tcp::socket accepted, SSL_CTX &context, const std::string &bytes)
{
    asio::io_context io;
    tcp::socket socket(io, tcp::v4(), accepted.release());
    server::TlsStream stream(std::move(socket), context);
    const auto done = asio::co_spawn(io, sendAll(stream, bytes), asio::use_future);
    io.run();
}

void compareTransfers(const server::Configuration &configuration)
{
    constexpr std::uint64_t size = 200'000'000; // about what the scans make
    const auto context = server::makeTlsContext(configuration.certificate.string(), configuration.privateKey.string());
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = char(at * 7);
    std::vector<Side> sides {
        { "bare TLS", [&] { transfer([&](tcp::socket socket) { sendBare(std::move(socket), *context, bytes); }, size); } },
        { "the server's sending", [&] { transfer([&](tcp::socket socket) { sendAsServer(std::move(socket), *context, bytes); }, size); } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms for %.0f MB\n", side.name.c_str(), median(side.milliseconds), double(size) / 1e6);
    printRatio(sides[1], sides[0], 1.6);
}

/// Many clients at once, each with requests one after the other.
void askMany(std::vector<std::unique_ptr<HttpsClient>> &connections, const std::function<HttpReply(HttpsClient &)> &ask)
{
    std::vector<std::thread> threads;
    for (const auto &connection : connections) {
        threads.emplace_back([&] {
            for (int request = 0; request < requestsOfClient; ++request)
                if (const HttpReply reply = ask(*connection); reply.status != 200)
                    failWith("status " + std::to_string(reply.status) + reply.body);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

void compareSmallQueries(const BenchServer &server)
{
    const HttpHeaders headers = server.headers();
    std::vector<std::unique_ptr<HttpsClient>> connections;
    for (int number = 0; number < clients; ++number)
        connections.push_back(std::make_unique<HttpsClient>(server.port()));
    std::vector<Side> sides {
        { "the time", [&] { askMany(connections, [&](HttpsClient &client) { return client.get("/v1/time", headers); }); } },
        { "one row", [&] { askMany(connections, [&](HttpsClient &client) { return client.post("/v1/query", oneRow, headers); }); } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf(
            "%s, %d clients: %.0f a second\n", side.name.c_str(), clients, clients * requestsOfClient * 1e3 / median(side.milliseconds));
    printRatio(sides[1], sides[0], 2.0);
}

/// The other end of the idle connections, in a process of its own: each asks once, and all wait for the end of the input.
int holdConnections(std::uint16_t port, const std::string &token)
{
    server::raiseFileLimit();
    std::vector<std::unique_ptr<HttpsClient>> held;
    for (int number = 0; number < idleConnections; ++number) {
        held.push_back(std::make_unique<HttpsClient>(port));
        if (held.back()->post("/v1/query", oneRow, bearer(token)).status != 200)
            return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    std::cin.get();
    return 0;
}

void measureIdleConnections(const BenchServer &server)
{
    HttpsClient(server.port()).post("/v1/query", oneRow, server.headers());
    const auto before = residentBytes();
    QProcess process;
    const std::string token = server.headers().substr(22, server.headers().size() - 24);
    process.start(
        QCoreApplication::applicationFilePath(), { QStringLiteral("hold"), QString::number(server.port()), QString::fromStdString(token) });
    if (!process.waitForReadyRead(-1))
        failWith(process.readAllStandardError().toStdString());
    const double each = double(residentBytes() - before) / idleConnections;
    process.closeWriteChannel();
    process.waitForFinished(-1);
    std::printf("idle connection: %.1f kB, goal 64: %s\n", each / 1000, each <= 64'000 ? "reached" : "missed");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 4)
        return holdConnections(std::uint16_t(std::atoi(argv[2])), argv[3]);
    server::raiseFileLimit();
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    const std::string path = directory.filePath(QStringLiteral("scans.db")).toStdString();
    runScript(path, scanTableScript(scanCount) + "create index TAB_SCAN_COME_BILL on TAB_SCAN_COME (BILL_CODE);");
    const BenchServer server(directory);
    const auto isWanted = [&](const char *part) { return argc == 1 || std::string_view(argv[1]) == part; };
    if (isWanted("idle"))
        measureIdleConnections(server);
    if (isWanted("load"))
        compareLoads(server, path);
    if (isWanted("send"))
        compareTransfers(server.configuration());
    if (isWanted("small"))
        compareSmallQueries(server);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
