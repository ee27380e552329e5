#pragma once

#include "server/base/audit_log.h"
#include "server/callers.h"
#include "server/http/request.h"
#include "server/running_statements.h"
#include "server/settings/configuration.h"
#include "server/statements/statement.h"
#include "server/users/logins.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <variant>

namespace server {

/// What the server does for its clients, apart from how they reach it. To be used from any thread.
class Service {
public:
    /// How far the server is on its way to its end.
    enum class Phase {
        Serving,
        Draining, ///< still serves, but says that it is not ready
        Refusing, ///< lets finish what runs
    };
    using Answer = std::function<void(Response)>;

    /// Throws std::runtime_error when a file cannot be used.
    explicit Service(const Configuration &configuration);

    const Configuration &configuration() const { return m_configuration; }
    Metrics &metrics() { return m_metrics; }
    AuditLog &auditLog() { return m_auditLog; }
    /// What the databases lack, for whoever logs in from now on.
    void setDatabaseFaults(const std::vector<std::string> &faults);
    RunningStatements &running() { return m_running; }
    /// Throws std::out_of_range.
    Database &database(std::string_view name);
    Phase phase() const { return m_phase; }
    void setPhase(Phase phase) { m_phase = phase; }

    /// The address of the client behind a request that came from `peer`.
    std::string clientAddress(const Request &request, const std::string &peer) const;
    /// Whether the request is a query, which beginQuery() takes. All others are for answer().
    static bool isQuery(const Request &request);
    /// Answers a request; `answer` is called once, at once or on another thread.
    void answer(const Request &request, const std::string &address, const Answer &answer);
    /// Begins a query of the client at that address: its statement, or why there is none.
    std::variant<std::shared_ptr<Statement>, Response> beginQuery(
        const Request &request, const std::string &address, std::function<void()> wake);
    /// Counts and logs a statement that has ended.
    void endQuery(const Statement &statement, const std::string &address, const std::string &result);

private:
    struct Route;
    static const Route *routeOf(const std::string &path);
    void login(const Request &request, const std::string &address, const Answer &answer);
    void changePassword(const Request &request, const std::string &address, const Answer &answer);
    void logout(const Request &request, const std::string &address, const Answer &answer);
    void me(const Request &request, const std::string &address, const Answer &answer);
    void takeReport(const Request &request, const std::string &address, const Answer &answer);
    void time(const Request &request, const std::string &address, const Answer &answer);
    void health(const Request &request, const std::string &address, const Answer &answer);
    void readiness(const Request &request, const std::string &address, const Answer &answer);
    void metricsText(const Request &request, const std::string &address, const Answer &answer);
    bool mayReport(const std::string &user);
    bool maySeeNames(const Request &request, const std::string &address);
    Database *find(std::string_view name) const;
    std::variant<Database *, Response> databaseFor(const Request &request, const Account &account) const;
    std::string clientJson() const;
    static std::unique_ptr<Accounts> makeAccounts(const Configuration &configuration);

    const Configuration m_configuration;
    const TokenKey m_key;
    const std::unique_ptr<Accounts> m_accounts;
    Callers m_callers;
    AuditLog m_auditLog;
    Metrics m_metrics {};
    std::atomic<Phase> m_phase { Phase::Serving };
    std::vector<std::unique_ptr<Database>> m_databases {};
    RunningStatements m_running {};
    mutable std::mutex m_faultsMutex {};
    std::string m_faultsJson = "[]";
    const std::string m_run = randomHex(4); ///< tells the statements of this run from others in the audit log
    std::atomic<std::uint64_t> m_lastStatement { 0 };
    std::mutex m_reportMutex {};
    std::chrono::steady_clock::time_point m_reportsSince {};
    std::map<std::string, int> m_reports {}; ///< of a minute, by user
    FairPool m_asking; ///< one thread that asks the databases whether they are there
    Logins m_logins;
};

/// The answer for a statement that ended before a byte of its result was sent.
Response responseTo(Outcome outcome, const std::string &message);
/// The outcome as the audit log names it.
std::string_view nameOf(Outcome outcome);

} // namespace server
