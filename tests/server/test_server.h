#pragma once

#include "server/server.h"
#include "server/service.h"
#include "tests/engine/support.h"
#include "tests/support/https_client.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace server::test {

/// A folder in the temporary directory, removed at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    ~TemporaryFolder();
    std::filesystem::path operator/(const std::string &name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

constexpr auto password = "正确的密码";

/// NUMBERS has n from 1 to 1,000 with a text of 10 bytes; of its texts, that of 900 alone is no number. No columns are longer.
const engine::test::TemporaryDatabase &numbersDatabase();
/// Has as many rows as one likes: `select a.n from NUMBERS a, NUMBERS b` gives a million.
constexpr auto millionRows = "select a.n, b.text from NUMBERS a, NUMBERS b";
/// Computes for hours without a row.
constexpr auto endless = "select count(*) from NUMBERS a, NUMBERS b, NUMBERS c, NUMBERS d where a.n+b.n+c.n+d.n<0";

/// A server on a free port, in this process, with the users "ann" and "李明" and the database "main".
class TestServer {
public:
    /// `change` adapts the configuration.
    explicit TestServer(const std::function<void(Configuration &)> &change = {});

    std::uint16_t port() const { return m_server->port(); }
    Server &operator*() { return *m_server; }
    Server *operator->() { return m_server.get(); }
    const Configuration &configuration() const { return m_configuration; }
    /// Headers that show a valid token.
    HttpHeaders as(const std::string &user) const;
    std::string token(const std::string &user, std::int64_t lifeSeconds = 3600) const;
    /// One query on a connection of its own.
    HttpReply query(std::string_view sql, const HttpHeaders &headers = {}, const std::string &user = "ann") const;
    /// The value of a line of /metrics.
    double metric(const std::string &name) const;
    /// The lines of the audit log about such events, once there are so many.
    std::vector<std::string> auditLines(const std::string &event, std::size_t count) const;

private:
    TemporaryFolder m_folder;
    Configuration m_configuration;
    std::unique_ptr<Server> m_server;
};

const HttpHeaders csv = "Accept: text/csv\r\n";
const HttpHeaders json = "Accept: application/json\r\n";

constexpr auto newPassword = "long enough";

/// What kelvara-server user says.
std::string runUser(const std::filesystem::path &users, const std::string &command, const std::string &name,
    const std::string &secret = newPassword, const std::vector<std::string> &fields = {});
HttpReply logIn(std::uint16_t port, const std::string &user, const std::string &secret, const HttpHeaders &headers = {});
std::string tokenOf(const HttpReply &login);
std::string tokenFor(std::uint16_t port, const std::string &user, const std::string &secret);

/// The bytes of a file; empty when there is none.
std::string contentOf(const std::filesystem::path &path);

/// Looks again and again until the condition holds; false when it still does not after that time.
bool becomesTrue(const std::function<bool()> &condition, std::chrono::milliseconds within = std::chrono::minutes(1));

} // namespace server::test
