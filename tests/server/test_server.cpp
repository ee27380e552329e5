#include "tests/server/test_server.h"

#include "server/tls/certificate.h"
#include "server/user_command.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace server::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
    : m_path(fs::temp_directory_path() / ("kelvara-server-测试-" + randomHex(8)))
{
    fs::create_directory(m_path);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

const engine::test::TemporaryDatabase &numbersDatabase()
{
    static const engine::test::TemporaryDatabase database(R"(
create table NUMBERS (N NUMBER(10), TEXT VARCHAR2(20));
with recursive count(n) as (select 1 union all select n+1 from count where n<1000)
insert into NUMBERS select n, case n when 900 then 'kein Zahl!' else printf('%010d', n) end from count;
create table CELLS (NAME VARCHAR2(40), FEE NUMBER(12,2), MOMENT DATE, RATIO NUMBER);
insert into CELLS values ('逗号,引号"换行' || char(10) || '完', -0.05, '2026-03-15 16:30:00', 1e20);
insert into CELLS values (null, 12.50, null, 0);
)");
    return database;
}

TestServer::TestServer(const std::function<void(Configuration &)> &change)
{
    m_configuration.address = "127.0.0.1";
    m_configuration.port = 0;
    m_configuration.certificate = m_folder / "server.crt";
    m_configuration.privateKey = m_folder / "server.key";
    m_configuration.users = m_folder / "users";
    m_configuration.auditLog = m_folder / "audit.log";
    m_configuration.tokenKey = std::string(TokenKey::shortestSecret, 'k');
    m_configuration.drainTime = {};
    m_configuration.databases.push_back({ "main", numbersDatabase().url() });
    if (change)
        change(m_configuration);
    makeLocalCertificate(m_configuration.certificate, m_configuration.privateKey);
    static const std::string hash = hashPassword(password);
    const Account account { .hash = hash };
    writeUsers(m_configuration.users, { { "ann", account }, { "bob", account }, { "李明", account } });
    m_server = std::make_unique<Server>(m_configuration);
}

std::string TestServer::token(const std::string &user, std::int64_t lifeSeconds) const
{
    const Users users = readUsers(m_configuration.users);
    const auto account = users.find(user);
    const std::string generation = generationOf(account == users.end() ? "" : account->second.hash);
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch());
    return TokenKey(m_configuration.tokenKey).sign({ user, now.count() + lifeSeconds, generation });
}

HttpHeaders TestServer::as(const std::string &user) const { return bearer(token(user)); }

HttpReply TestServer::query(std::string_view sql, const HttpHeaders &headers, const std::string &user) const
{
    return HttpsClient(port()).post("/v1/query", sql, as(user) + headers);
}

double TestServer::metric(const std::string &name) const
{
    const std::string text = "\n" + HttpsClient(port()).get("/metrics").body;
    const std::size_t line = text.find("\n" + name + " ");
    return line == std::string::npos ? -1 : std::stod(text.substr(line + name.size() + 2));
}

std::vector<std::string> TestServer::auditLines(const std::string &event, std::size_t count) const
{
    std::vector<std::string> lines;
    becomesTrue([&] {
        lines.clear();
        std::ifstream file(m_configuration.auditLog);
        for (std::string line; std::getline(file, line);)
            if (line.find("\"event\":\"" + event + "\"") != line.npos)
                lines.push_back(line);
        return lines.size() >= count;
    });
    return lines;
}

std::string runUser(const fs::path &users, const std::string &command, const std::string &name, const std::string &secret,
    const std::vector<std::string> &fields)
{
    Options options { .mode = Options::Mode::User };
    options.userCommand = command;
    options.users = users;
    options.userName = name;
    options.userFields = fields;
    options.passwordFromInput = true;
    std::istringstream in(secret + "\n");
    std::ostringstream out;
    runUserCommand(options, in, out);
    return out.str();
}

HttpReply logIn(std::uint16_t port, const std::string &user, const std::string &secret, const HttpHeaders &headers)
{
    return HttpsClient(port).post("/v1/login", R"({"user":")" + user + R"(","password":")" + secret + "\"}", headers);
}

std::string tokenOf(const HttpReply &login)
{
    const std::size_t begin = login.body.find("\"token\":\"") + 9;
    return login.body.substr(begin, login.body.find('"', begin) - begin);
}

std::string tokenFor(std::uint16_t port, const std::string &user, const std::string &secret) { return tokenOf(logIn(port, user, secret)); }

std::string contentOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

bool becomesTrue(const std::function<bool()> &condition, std::chrono::milliseconds within)
{
    const auto end = std::chrono::steady_clock::now() + within;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

} // namespace server::test
