// What the small statements of honest users wait while others attack: the time that 99 of 100 take less than, quiet and during each
// attack, in turn; the longest attacking statement; and the memory that the server takes more. The server runs in a process of its own.
// `attack_benchmark [part of an attack's name]`; as root, the honest clients go first, as if they ran on machines of their own.

#include "bench/scan_table.h"
#include "server/base/system.h"
#include "server/server.h"
#include "server/tls/certificate.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/support/child_process.h"
#include "tests/support/https_client.h"

#include <sqlite3.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int honestUsers = 8;
constexpr int attackers = 2; ///< accounts, each with as many statements at a time as it may have
constexpr auto measuredTime = 4s;
constexpr auto statementTime = 2s;
constexpr double mostRatio = 2;

[[noreturn]] void failWith(const std::string &message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

/// A folder with what a server needs; all users have the same password.
class ServerFolder {
public:
    ServerFolder()
        : m_path(std::filesystem::temp_directory_path() / ("attack-" + server::randomHex(8)))
    {
        std::filesystem::create_directory(m_path);
        server::makeLocalCertificate(configuration().certificate, configuration().privateKey);
        server::Users users;
        for (int number = 0; number < honestUsers + attackers; ++number)
            users["user" + std::to_string(number)].hash = hash;
        server::writeUsers(configuration().users, users);
        fillDatabase();
    }
    explicit ServerFolder(std::filesystem::path path)
        : m_path(std::move(path))
    {
    }
    ServerFolder(const ServerFolder &) = delete;
    void remove() const { std::filesystem::remove_all(m_path); }

    const std::filesystem::path &path() const { return m_path; }
    server::Configuration configuration() const
    {
        server::Configuration configuration;
        configuration.address = "127.0.0.1";
        configuration.port = 0;
        configuration.certificate = m_path / "server.crt";
        configuration.privateKey = m_path / "server.key";
        configuration.users = m_path / "users";
        configuration.auditLog = m_path / "audit.log";
        configuration.tokenKey = std::string(server::TokenKey::shortestSecret, 'k');
        configuration.databases.push_back({ "main", "sqlite:" + (m_path / "rows.db").string() });
        configuration.databases.back().statementTime = statementTime;
        return configuration;
    }
    HttpHeaders headersOf(int user) const
    {
        const std::string name = "user" + std::to_string(user);
        const std::string generation = server::generationOf(server::readUsers(configuration().users).at(name).hash);
        return bearer(server::TokenKey(configuration().tokenKey).sign({ name, server::secondsNow() + 3600, generation }));
    }

private:
    void fillDatabase() const
    {
        sqlite3 *database = nullptr;
        sqlite3_open((m_path / "rows.db").c_str(), &database);
        const std::string script = scanTableScript(100'000)
            + "create index TAB_SCAN_COME_BILL on TAB_SCAN_COME (BILL_CODE);"
              "create table LONGS (N NUMBER(6), TEXT VARCHAR2(4000), PART VARCHAR2(4000));"
              "insert into LONGS values (1, printf('%.*c', 1000000, 'a'), printf('%.*c', 500000, 'a') || 'b');"
              "create table NUMBERS (N NUMBER(6), TEXT VARCHAR2(4000));"
              "insert into NUMBERS with recursive n(i) as (select 1 union all select i + 1 from n where i < 2000)"
              " select i, printf('%.*c', 3900, 'x') || i from n;";
        if (sqlite3_exec(database, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            failWith(sqlite3_errmsg(database));
        sqlite3_close(database);
    }

    const std::string hash = server::hashPassword("no matter");
    const std::filesystem::path m_path;
};

/// The other process: serves until it is killed.
int serve(const std::string &path)
{
    const server::Server running(ServerFolder(std::filesystem::path(path)).configuration());
    std::printf("%d %d\n", int(running.port()), int(getpid()));
    std::fflush(stdout);
    while (true)
        pause();
}

struct Latency {
    double middle = 0; ///< milliseconds
    double high = 0; ///< of 99 in 100
};

class Attacked {
public:
    Attacked(const ServerFolder &folder, const char *program)
        : m_folder(folder)
        , m_process({ program, "serve", folder.path().string() })
    {
        const std::string line = m_process.readLine();
        if (std::sscanf(line.c_str(), "%hu %d", &m_port, &m_id) != 2)
            failWith("the server has not begun");
    }

    std::uint16_t port() const { return m_port; }
    HttpHeaders attacker(int number) const { return m_folder.headersOf(honestUsers + number % attackers); }

    /// Small statements of honest users for a while.
    Latency measure() const
    {
        std::vector<std::vector<double>> times(honestUsers);
        {
            std::vector<std::jthread> users;
            for (int user = 0; user < honestUsers; ++user)
                users.emplace_back([&, user] { times[std::size_t(user)] = askSmall(user); });
        }
        std::vector<double> all;
        for (const auto &ofUser : times)
            all.insert(all.end(), ofUser.begin(), ofUser.end());
        std::ranges::sort(all);
        return { all[all.size() / 2], all[all.size() * 99 / 100] };
    }

    std::int64_t residentMegabytes() const
    {
        std::int64_t total = 0;
        std::int64_t resident = 0;
        std::ifstream("/proc/" + std::to_string(m_id) + "/statm") >> total >> resident;
        return resident * sysconf(_SC_PAGESIZE) >> 20;
    }

private:
    std::vector<double> askSmall(int user) const
    {
        setpriority(PRIO_PROCESS, id_t(gettid()), -10);
        const HttpHeaders headers = m_folder.headersOf(user);
        HttpsClient client(m_port);
        std::vector<double> times;
        std::uint64_t code = 1'000'003 * std::uint64_t(user);
        for (const auto end = Clock::now() + measuredTime; Clock::now() < end;) {
            code = code * 7'368'787 % 1'000'003;
            const std::string sql
                = "select SCAN_SITE from TAB_SCAN_COME where BILL_CODE='77" + std::to_string(10'000'000'000 + code * 37) + "'";
            const auto begun = Clock::now();
            if (const HttpReply reply = client.post("/v1/query", sql, headers); reply.status != 200)
                failWith("an honest user got " + std::to_string(reply.status) + reply.body);
            times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begun).count());
            std::this_thread::sleep_for(5ms);
        }
        return times;
    }

    const ServerFolder &m_folder;
    ChildProcess m_process;
    std::uint16_t m_port = 0;
    int m_id = 0;
};

struct Attack {
    std::string name;
    int threads; ///< each attacks again and again
    std::function<void(const Attacked &, int thread)> once;
};

/// Asks, and throws the result away.
void ask(const Attacked &server, int thread, const std::string &sql)
{
    HttpsClient client(server.port());
    client.send("POST /v1/query HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(sql.size()) + "\r\n" + server.attacker(thread)
        + "\r\n" + sql);
    client.receive([](std::string_view) {});
}

std::string repeated(std::string_view part, int count)
{
    std::string text;
    for (int number = 0; number < count; ++number)
        text += part;
    return text;
}

std::vector<Attack> attacks()
{
    const int statements = attackers * int(server::DatabaseConfiguration().userStatements);
    const std::pair<const char *, std::string> costly[] = {
        { "cross join", "select count(*) from NUMBERS a,NUMBERS b,NUMBERS c,NUMBERS d" },
        { "instr", "select count(*) from LONGS a,NUMBERS b,NUMBERS c where instr(a.TEXT,a.PART,b.N,c.N)=7" },
        { "ltrim", "select ltrim(a.TEXT,a.PART) from LONGS a,NUMBERS c" },
        { "like", "select count(*) from LONGS where TEXT like '" + repeated("%a_", 1000) + "b'" },
        { "regexp", "select regexp_instr(TEXT,'(a|aa|aaa){1,250}b') from LONGS" },
        { "order by long texts", "select a.TEXT from LONGS a,NUMBERS b order by a.TEXT,b.N" },
        { "order by many rows", "select a.N from NUMBERS a,NUMBERS b,NUMBERS c order by a.N,b.N,c.N" },
        { "preparing",
            "select " + repeated("N+1,", 1900) + "N from (select 1 N from dual" + repeated(" union all select 1 from dual", 490) + ")" },
        { "concatenation", "select length(" + repeated("TEXT||", 100) + "TEXT) from LONGS" },
        { "wide rows", "select " + repeated("TEXT,", 1500) + "TEXT from NUMBERS" },
        { "endless result", "select a.N,b.N M from NUMBERS a,NUMBERS b" },
        { "refused", "select * from " + repeated("(select * from ", 150) + "NUMBERS" + repeated(")", 150) },
    };
    std::vector<Attack> all;
    for (const auto &[name, sql] : costly)
        all.push_back({ name, statements, [sql = sql](const Attacked &server, int thread) { ask(server, thread, sql); } });
    all.push_back({ "wrong passwords", 8, [](const Attacked &server, int thread) {
                       HttpsClient(server.port())
                           .post(
                               "/v1/login", "{\"user\":\"user" + std::to_string(thread) + server::randomHex(4) + "\",\"password\":\"x\"}");
                   } });
    all.push_back({ "handshakes", 4, [](const Attacked &server, int) { HttpsClient(server.port()).get("/healthz"); } });
    return all;
}

/// Prints what the attack does; false when it does more than it may.
bool run(const Attack &attack, const Attacked &server)
{
    const Latency quiet = server.measure();
    const std::int64_t before = server.residentMegabytes();
    std::atomic<bool> ends { false };
    std::atomic<std::int64_t> highest { 0 };
    std::atomic<Clock::rep> longest { 0 };
    Latency during;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < attack.threads; ++thread) {
            threads.emplace_back([&, thread] {
                while (!ends) {
                    const auto begun = Clock::now();
                    attack.once(server, thread);
                    longest = std::max(longest.load(), (Clock::now() - begun).count());
                }
            });
        }
        threads.emplace_back([&] {
            while (!ends) {
                highest = std::max(highest.load(), server.residentMegabytes());
                std::this_thread::sleep_for(10ms);
            }
        });
        std::this_thread::sleep_for(500ms);
        during = server.measure();
        ends = true;
    }
    const double ratio = during.high / quiet.high;
    std::printf("%-20s quiet %6.2f %6.2f ms, attacked %7.2f %7.2f ms, ratio of the 99th %6.2f: %s; longest %5.2f s, %+5lld MB\n",
        attack.name.c_str(), quiet.middle, quiet.high, during.middle, during.high, ratio, ratio <= mostRatio ? "reached" : "missed",
        std::chrono::duration<double>(Clock::duration(longest)).count(), static_cast<long long>(highest - before));
    std::fflush(stdout);
    return ratio <= mostRatio;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::string_view(argv[1]) == "serve")
        return serve(argv[2]);
    const ServerFolder folder;
    bool allReached = true;
    {
        const Attacked server(folder, "/proc/self/exe");
        for (const Attack &attack : attacks())
            if (argc == 1 || attack.name.find(argv[1]) != std::string::npos)
                allReached &= run(attack, server);
    }
    folder.remove();
    return allReached ? 0 : 1;
}
