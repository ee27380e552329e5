#pragma once

#include "server/base/audit_log.h"
#include "server/configuration.h"
#include "server/http/request.h"
#include "server/statements/statement.h"
#include "server/users/logins.h"

#include <variant>

namespace server {

/// What the server does for its clients, apart from how they reach it. To be used from any thread.
class Service {
public:
    /// How far the server is on its way to its end.
    enum class Phase {
        Serving,
        Leaving, ///< still serves, but says that it is not ready
        Refusing, ///< lets finish what runs
    };
    using Answer = std::function<void(Response)>;

    /// Throws std::runtime_error when a file cannot be used.
    explicit Service(const Configuration &configuration);

    const Configuration &configuration() const { return m_configuration; }
    Metrics &metrics() { return m_metrics; }
    AuditLog &auditLog() { return m_auditLog; }
    Phase phase() const { return m_phase; }
    void setPhase(Phase phase) { m_phase = phase; }

    /// The address of the client behind a request that came from `peer`.
    std::string clientAddress(const Request &request, const std::string &peer) const;
    /// Answers every request but queries; `answer` is called once, at once or on another thread.
    void answer(const Request &request, const std::string &address, Answer answer);
    /// Begins a query: its statement, or why there is none.
    std::variant<std::shared_ptr<Statement>, Response> beginQuery(const Request &request, std::function<void()> wake);
    /// Counts and logs a statement that has ended.
    void endQuery(const Statement &statement, const std::string &address, const std::string &result);

private:
    struct Route;
    static const Route *routeOf(const std::string &path);
    Response time(const Request &request);
    Response metricsText() const;
    void askDatabases(Answer answer);
    std::optional<Token> tokenOf(const Request &request);
    Database *databaseFor(const Request &request) const;

    const Configuration m_configuration;
    const TokenKey m_key;
    UserFile m_users;
    AuditLog m_auditLog;
    Metrics m_metrics {};
    std::atomic<Phase> m_phase { Phase::Serving };
    std::vector<std::unique_ptr<Database>> m_databases {};
    FairPool m_asking; ///< one thread that asks the databases whether they are there
    Logins m_logins;
};

/// The answer for a statement that ended before a byte of its result was sent.
Response responseTo(Outcome outcome, const std::string &message);
/// The outcome as the audit log names it.
std::string_view nameOf(Outcome outcome);

} // namespace server
