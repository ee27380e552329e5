#include "server/service.h"

#include "server/base/address.h"
#include "server/base/json.h"
#include "server/base/system.h"
#include "server/base/text.h"

#include <algorithm>

namespace server {

namespace {

/// The beginning of a line about a statement; "id" ties its lines together.
AuditLine auditLineOf(std::string_view event, const StatementRequest &request, const std::string &address, const Database &database)
{
    AuditLine line(event);
    line.add("id", request.id).add("user", request.user).add("address", address).add("database", database.configuration().name);
    return line;
}

Response stopping() { return errorResponse(503, "stopping", "服务器正在停机，请稍候再试或换一台服务器"); }

Response plainText(int status, std::string text)
{
    return { .status = status, .body = std::move(text), .contentType = "text/plain; charset=utf-8" };
}

} // namespace

/// What a path takes and who answers it. Queries have no member here: their answers are sent while they run.
struct Service::Route {
    std::string_view path;
    std::string_view method;
    void (Service::*answer)(const Request &, const std::string &, const Answer &);
    enum class Until { Refusing, End } served; ///< how long, when the server stops
};

const Service::Route *Service::routeOf(const std::string &path)
{
    using Until = Route::Until;
    static constexpr Route routes[] = {
        { "/v1/query", "POST", nullptr, Until::Refusing },
        { "/v1/login", "POST", &Service::login, Until::Refusing },
        { "/v1/me", "GET", &Service::me, Until::Refusing },
        { "/v1/password", "POST", &Service::changePassword, Until::Refusing },
        { "/v1/logout", "POST", &Service::logout, Until::Refusing },
        { "/v1/audit", "POST", &Service::takeReport, Until::Refusing },
        { "/v1/time", "GET", &Service::time, Until::Refusing },
        { "/healthz", "GET", &Service::health, Until::End },
        { "/readyz", "GET", &Service::readiness, Until::End },
        { "/metrics", "GET", &Service::metricsText, Until::End },
    };
    const auto *const found = std::find_if(std::begin(routes), std::end(routes), [&](const Route &route) { return route.path == path; });
    return found == std::end(routes) ? nullptr : found;
}

bool Service::isQuery(const Request &request)
{
    const Route *const route = routeOf(request.path);
    return route && !route->answer && request.method == route->method;
}

Service::Service(const Configuration &configuration)
    : m_configuration(configuration)
    , m_key(configuration.tokenKey, configuration.clock)
    , m_accounts(makeAccounts(m_configuration))
    , m_callers(m_key, *m_accounts)
    , m_auditLog(configuration.auditLog)
    , m_asking({ .workers = 1, .waiting = 1000, .userRunning = 1, .userWaiting = 1000 })
    , m_logins(
          *m_accounts, m_key, configuration.tokenLife, configuration.loginQueue, [this] { return clientJson(); }, m_metrics, m_auditLog)
{
    for (const DatabaseConfiguration &database : configuration.databases)
        m_databases.push_back(std::make_unique<Database>(database));
}

std::string Service::clientJson() const
{
    std::string settings;
    for (const auto &[key, value] : m_configuration.clients.settings)
        settings += (settings.empty() ? "" : ",") + jsonText(key) + ":" + jsonText(value);
    const std::lock_guard lock(m_faultsMutex);
    return "{\"smallest_version\":" + jsonText(m_configuration.clients.smallestVersion) + ",\"settings\":{" + settings
        + "},\"database_faults\":" + m_faultsJson + "}";
}

void Service::setDatabaseFaults(const std::vector<std::string> &faults)
{
    std::string json;
    for (const std::string &fault : faults)
        json += (json.empty() ? "" : ",") + jsonText(fault);
    const std::lock_guard lock(m_faultsMutex);
    m_faultsJson = "[" + json + "]";
}

Database &Service::database(std::string_view name)
{
    Database *const found = find(name);
    if (!found)
        throw std::out_of_range("no database has this name");
    return *found;
}

std::string Service::clientAddress(const Request &request, const std::string &peer) const
{
    const auto &proxies = m_configuration.trustedProxies;
    if (std::find(proxies.begin(), proxies.end(), peer) == proxies.end())
        return peer;
    // The last address is the one that our own proxy has seen.
    std::string_view rest = request.forwardedFor;
    std::string_view last;
    while (!rest.empty())
        last = nextPart(rest, ',');
    return request.forwardedFor.ends_with(',') ? peer : addressOf(last).value_or(peer);
}

void Service::answer(const Request &request, const std::string &address, const Answer &answer)
{
    const Route *const route = routeOf(request.path);
    if (!route)
        return answer(errorResponse(404, "path", "没有这个地址，请检查请求的路径"));
    if (request.method != route->method && !(request.method == "HEAD" && route->method == "GET")) {
        Response response = errorResponse(405, "method", "这个地址不接受 " + request.method + " 请求");
        response.headers = "Allow: " + std::string(route->method) + "\r\n";
        return answer(response);
    }
    if (m_phase == Phase::Refusing && route->served == Route::Until::Refusing)
        return answer(stopping());
    (this->*route->answer)(request, address, answer);
}

std::variant<std::shared_ptr<Statement>, Response> Service::beginQuery(
    const Request &request, const std::string &address, std::function<void()> wake)
{
    if (m_phase == Phase::Refusing)
        return stopping();
    const auto admitted = m_callers.admitted(request);
    if (const auto *refusal = std::get_if<Response>(&admitted))
        return *refusal;
    const auto &caller = std::get<Caller>(admitted);
    if (!request.hasBody)
        return errorResponse(411, "length", "请求缺少内容长度，请在请求里带上查询语句");
    if (!request.isVersion11)
        return errorResponse(400, "request", "查询需要 HTTP/1.1，请检查客户端和代理的设置");
    const auto format = acceptedFormat(request.accept);
    if (!format)
        return errorResponse(406, "accept", "结果只能是 " + std::string(arrowType) + "、text/csv 或 application/json，请检查 Accept");
    const auto chosen = databaseFor(request, caller.account->account);
    if (const auto *refusal = std::get_if<Response>(&chosen))
        return *refusal;
    Database *const database = std::get<Database *>(chosen);
    StatementRequest wanted { caller.user, request.body, *format,
        request.compression == "lz4" ? packet::Compression::Lz4 : packet::Compression::None };
    wanted.reader = caller.account->reader;
    wanted.mayGoOn = [this, caller, database] { return m_callers.mayGoOn(caller, database->configuration().name); };
    wanted.id = m_run + "-" + std::to_string(++m_lastStatement);
    // A statement that ends the process has its line in the log before it runs.
    const auto line = m_auditLog.add(auditLineOf("query", wanted, address, *database).add("statement", wanted.sql));
    wanted.beforeRunning = [this, line] { m_auditLog.settle(line); };
    auto statement = std::make_shared<Statement>(*database, std::move(wanted), std::move(wake));
    statement->submit();
    m_running.add(statement, address);
    return statement;
}

void Service::endQuery(const Statement &statement, const std::string &address, const std::string &result)
{
    using namespace std::chrono;
    const auto duration = duration_cast<microseconds>(Statement::Clock::now() - statement.begun());
    m_running.remove(statement);
    m_metrics.countStatement(duration, statement.rows(), statement.bytes());
    m_auditLog.add(auditLineOf("result", statement.request(), address, statement.database())
                       .add("milliseconds", duration_cast<milliseconds>(duration).count())
                       .add("rows", statement.rows())
                       .add("bytes", std::int64_t(statement.bytes()))
                       .add("result", result));
}

void Service::health(const Request &, const std::string &, const Answer &answer) { answer(plainText(200, "ok\n")); }

void Service::metricsText(const Request &request, const std::string &address, const Answer &answer)
{
    if (!maySeeNames(request, address))
        return answer(errorResponse(403, "monitor", "只有本机、配置文件 monitors 中的地址和已登录的用户可以查看"));
    m_metrics.usersUnreadable = m_accounts->isReadable() ? 0 : 1;
    m_metrics.accountsOverdue = m_accounts->overdue().count();
    std::map<std::string, Metrics::Load> databases;
    std::vector<Metrics::Address> addresses;
    for (const auto &database : m_databases) {
        databases[database->configuration().name] = { database->pool().running(), database->pool().waiting() };
        for (std::size_t at = 0; at < database->replicas().size(); ++at) {
            const Replica &replica = *database->replicas()[at];
            addresses.push_back({ database->configuration().name, at + 1, replica.isUp(), replica.running(),
                std::chrono::duration<double>(replica.lag()).count() });
        }
    }
    answer({ .body = m_metrics.text(databases, addresses), .contentType = "text/plain; version=0.0.4; charset=utf-8" });
}

void Service::readiness(const Request &request, const std::string &address, const Answer &answer)
{
    if (m_phase != Phase::Serving)
        return answer(plainText(503, "stopping\n"));
    const auto ask = [this, answer, showsNames = maySeeNames(request, address)] {
        bool isReady = m_accounts->isReadable();
        std::string text = isReady ? "" : "users unavailable\n";
        for (const auto &database : m_databases) {
            const bool answers = database->isReady();
            isReady &= answers;
            text += database->configuration().name + (answers ? " ok\n" : " unavailable\n");
            for (std::size_t at = 0; at < database->replicas().size() && database->replicas().size() > 1; ++at) {
                const std::string name = database->configuration().name + " " + std::to_string(at + 1);
                text += name + (database->replicas()[at]->isFit() ? " ok\n" : " unavailable\n");
            }
        }
        answer(plainText(isReady ? 200 : 503, showsNames ? text : isReady ? "ok\n" : "unavailable\n"));
    };
    if (!m_asking.submit({}, ask))
        answer(plainText(503, "busy\n"));
}

bool Service::maySeeNames(const Request &request, const std::string &address)
{
    const auto &monitors = m_configuration.monitors;
    return isLoopback(address) || std::find(monitors.begin(), monitors.end(), address) != monitors.end()
        || std::holds_alternative<Caller>(m_callers.admitted(request));
}

/// The database that the request names; when it names none, the first one of the account's.
std::variant<Database *, Response> Service::databaseFor(const Request &request, const Account &account) const
{
    const std::string name = request.database.empty() ? request.parameter("database") : request.database;
    const auto isAllowed = [&account](const auto &database) { return account.databases.has(database->configuration().name); };
    if (name.empty()) {
        const auto first = std::find_if(m_databases.begin(), m_databases.end(), isAllowed);
        if (first == m_databases.end())
            return errorResponse(403, "database", "帐户没有可以查询的数据库，请联系管理员");
        return first->get();
    }
    if (!account.databases.has(name))
        return errorResponse(403, "database", "帐户无权查询这个数据库，请联系管理员");
    if (Database *const found = find(name))
        return found;
    return errorResponse(404, "database", "没有这个数据库，请检查 X-Kelvara-Database");
}

Database *Service::find(std::string_view name) const
{
    const auto found = std::find_if(
        m_databases.begin(), m_databases.end(), [&](const auto &database) { return database->configuration().name == name; });
    return found == m_databases.end() ? nullptr : found->get();
}

Response responseTo(Outcome outcome, const std::string &message)
{
    switch (outcome) {
    case Outcome::Refused:
        return errorResponse(403, "refused", message);
    case Outcome::Failed:
        return errorResponse(400, "database", message);
    case Outcome::Ended:
        return errorResponse(400, "ended", message);
    case Outcome::TooLarge:
        return errorResponse(400, "too_large", message);
    case Outcome::TimeLimit:
        return errorResponse(408, "time_limit", message);
    case Outcome::Busy: {
        Response response = errorResponse(429, "busy", message);
        response.headers = "Retry-After: 1\r\n";
        return response;
    }
    case Outcome::Revoked:
        return errorResponse(401, "token", message);
    case Outcome::Cancelled:
        return errorResponse(503, "stopping", "服务器正在停机，查询没有完成，请稍候再试或换一台服务器");
    case Outcome::Complete:
    case Outcome::Unavailable:
        break;
    }
    return errorResponse(503, "unavailable", message);
}

std::string_view nameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Complete:
        return "ok";
    case Outcome::Refused:
        return "refused";
    case Outcome::Failed:
        return "failed";
    case Outcome::Cancelled:
        return "cancelled";
    case Outcome::TimeLimit:
        return "time limit";
    case Outcome::TooLarge:
        return "too large";
    case Outcome::Revoked:
        return "revoked";
    case Outcome::Unavailable:
        return "unavailable";
    case Outcome::Ended:
        return "ended";
    case Outcome::Busy:
        break;
    }
    return "busy";
}

} // namespace server
