#include "tests/server/test_server.h"
#include "tests/support/child_process.h"
#include "tests/support/cutting_proxy.h"

#include "packet/stream_reader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <thread>

namespace server::test {

namespace {

constexpr std::size_t rowsWanted = 200'000;
constexpr auto statement = "select a.n, b.text from NUMBERS a, NUMBERS b where a.n<=200";

/// A server in a process of its own, in its demonstration form.
class ServerProcess {
public:
    ServerProcess()
        : m_process({ KELVARA_BIN "/kelvara-server", "--demo", "--port", "0", "--data", (m_folder / "data").string(), "--database",
            numbersDatabase().url() })
    {
        for (std::string line = m_process.readLine(); !line.empty() && password.empty(); line = m_process.readLine()) {
            if (const std::size_t at = line.find("https://127.0.0.1:"); at != std::string::npos)
                port = std::uint16_t(std::stoi(line.substr(at + 18)));
            const std::string centre = "用户：centre　密码：";
            if (line.starts_with(centre))
                password = line.substr(centre.size(), line.find("　", centre.size()) - centre.size());
        }
    }
    HttpHeaders logIn() const
    {
        const HttpReply reply = HttpsClient(port).post("/v1/login", "{\"user\":\"centre\",\"password\":\"" + password + "\"}");
        const std::size_t begin = reply.body.find("\"token\":\"") + 9;
        return bearer(reply.body.substr(begin, reply.body.find('"', begin) - begin));
    }
    ChildProcess &process() { return m_process; }

    std::uint16_t port = 0;
    std::string password {};

private:
    TemporaryFolder m_folder {};
    ChildProcess m_process;
};

/// What a client makes of a result in each form. It may only ever be all rows or an error.
enum class Taken { Whole, Error, Part };

Taken takenAs(const HttpReply &reply)
{
    if (reply.headers.contains("content-type") && reply.headers.at("content-type").starts_with("application/vnd.apache.arrow")) {
        try {
            packet::StreamReader reader;
            reader.feed(std::as_bytes(std::span(reply.body)));
            return reader.finish()->rowCount() == rowsWanted ? Taken::Whole : Taken::Part;
        } catch (const packet::StreamError &) {
            return Taken::Error;
        }
    }
    if (!reply.complete || reply.status != 200)
        return Taken::Error;
    return std::count(reply.body.begin(), reply.body.end(), '\n') >= std::ptrdiff_t(rowsWanted) ? Taken::Whole : Taken::Part;
}

HttpReply ask(std::uint16_t port, const HttpHeaders &headers)
{
    try {
        return HttpsClient(port).post("/v1/query", statement, headers);
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace

TEST(Faults, ACutConnectionNeverGivesAPartForTheWhole)
{
    const TestServer server;
    const std::size_t handshake = 1500;
    std::mt19937_64 random(11);
    int errors = 0;
    for (const HttpHeaders &format : { HttpHeaders(), csv, json }) {
        const HttpHeaders headers = server.as("ann") + format;
        const std::size_t size = ask(server.port(), headers).body.size();
        ASSERT_GT(size, 100'000u);
        for (int round = 0; round < 40; ++round) {
            // Often in the last bytes, where a cut is hardest to see.
            const std::uint64_t cutAt = round % 4 == 0 ? size - random() % 300 + 3000 : handshake + random() % size;
            const auto how = round % 2 == 0 ? CuttingProxy::Cut::Close : CuttingProxy::Cut::Reset;
            CuttingProxy proxy(server.port());
            proxy.cutAfter(cutAt, how);
            const Taken taken = takenAs(ask(proxy.port(), headers));
            ASSERT_NE(taken, Taken::Part) << "cut at " << cutAt;
            errors += taken == Taken::Error;
        }
    }
    EXPECT_GE(errors, 60);
    EXPECT_EQ(takenAs(ask(server.port(), server.as("ann"))), Taken::Whole) << "the server goes on";
    EXPECT_TRUE(becomesTrue([&] { return server.metric("kelvara_statements_running{database=\"main\"}") == 0; }));
}

TEST(Faults, AKilledServerNeverGivesAPartForTheWhole)
{
    std::mt19937 random(5);
    int errors = 0;
    for (int round = 0; round < 12; ++round) {
        ServerProcess server;
        const HttpHeaders headers = server.logIn() + (round % 3 == 0 ? csv : round % 3 == 1 ? json : HttpHeaders());
        std::thread killer([&, delay = std::chrono::milliseconds(random() % 120)] {
            std::this_thread::sleep_for(delay);
            server.process().kill();
        });
        const Taken taken = takenAs(ask(server.port, headers));
        killer.join();
        EXPECT_NE(taken, Taken::Part);
        errors += taken == Taken::Error;
    }
    EXPECT_GE(errors, 1);
}

TEST(Faults, AHeldServerGoesOnWhereItStood)
{
    ServerProcess server;
    const HttpHeaders headers = server.logIn();
    for (int round = 0; round < 3; ++round) {
        std::thread holder([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(10 + 15 * round));
            server.process().pause();
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            server.process().resume();
        });
        EXPECT_EQ(takenAs(ask(server.port, headers)), Taken::Whole);
        holder.join();
    }
}

TEST(Faults, AServerThatIsAskedToEndFinishesItsAnswersFirst)
{
    ServerProcess server;
    const HttpHeaders headers = server.logIn();
    HttpsClient client(server.port);
    const std::string sql = statement;
    client.send(
        "POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(sql.size()) + "\r\n" + headers + json + "\r\n" + sql);
    EXPECT_TRUE(becomesTrue([&] {
        return HttpsClient(server.port).get("/metrics").body.find("kelvara_statements_running{database=\"demo\"} 1") != std::string::npos;
    }));
    server.process().terminate();
    EXPECT_EQ(takenAs(client.receive()), Taken::Whole);
    EXPECT_EQ(server.process().wait(), 0);
}

} // namespace server::test
