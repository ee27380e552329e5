#include "server/service.h"

#include "server/base/json.h"
#include "server/base/system.h"

#include <algorithm>

namespace server {

namespace {

std::int64_t secondsNow()
{
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

Response unauthorized()
{
    Response response = errorResponse(401, "token", "没有登录，或登录已经过期，请重新登录");
    response.headers = "WWW-Authenticate: Bearer\r\n";
    return response;
}

Response plainText(int status, std::string text)
{
    return { .status = status, .body = std::move(text), .contentType = "text/plain; charset=utf-8" };
}

} // namespace

/// Which methods a path takes.
struct Service::Route {
    std::string_view path;
    std::string_view method;
};

const Service::Route *Service::routeOf(const std::string &path)
{
    static constexpr Route routes[] = { { "/v1/query", "POST" }, { "/v1/login", "POST" }, { "/v1/time", "GET" }, { "/healthz", "GET" },
        { "/readyz", "GET" }, { "/metrics", "GET" } };
    const auto *const found = std::find_if(std::begin(routes), std::end(routes), [&](const Route &route) { return route.path == path; });
    return found == std::end(routes) ? nullptr : found;
}

Service::Service(const Configuration &configuration)
    : m_configuration(configuration)
    , m_key(configuration.tokenKey)
    , m_users(configuration.users)
    , m_auditLog(configuration.auditLog)
    , m_asking({ .workers = 1, .waiting = 1000, .userRunning = 1, .userWaiting = 1000 })
    , m_logins(m_users, m_key, configuration.tokenLife, configuration.loginQueue, m_metrics)
{
    for (const DatabaseConfiguration &database : configuration.databases)
        m_databases.push_back(std::make_unique<Database>(database));
}

std::string Service::clientAddress(const Request &request, const std::string &peer) const
{
    const auto &proxies = m_configuration.trustedProxies;
    if (request.forwardedFor.empty() || std::find(proxies.begin(), proxies.end(), peer) == proxies.end())
        return peer;
    // The last address is the one that our own proxy has seen.
    const std::size_t begin = request.forwardedFor.find_last_of(", ");
    return request.forwardedFor.substr(begin == std::string::npos ? 0 : begin + 1);
}

void Service::answer(const Request &request, const std::string &address, Answer answer)
{
    const Route *const route = routeOf(request.path);
    if (!route)
        return answer(errorResponse(404, "path", "没有这个地址，请检查请求的路径"));
    if (request.method != route->method && !(request.method == "HEAD" && route->method == "GET")) {
        Response response = errorResponse(405, "method", "这个地址不接受 " + request.method + " 请求");
        response.headers = "Allow: " + std::string(route->method) + "\r\n";
        return answer(response);
    }
    if (request.path == "/healthz")
        return answer(plainText(200, "ok\n"));
    if (request.path == "/readyz")
        return askDatabases(std::move(answer));
    if (request.path == "/metrics")
        return answer(metricsText());
    if (m_phase == Phase::Refusing)
        return answer(errorResponse(503, "stopping", "服务器正在停机，请稍候再试或换一台服务器"));
    if (request.path == "/v1/time")
        return answer(time(request));
    if (!request.hasBody)
        return answer(errorResponse(411, "length", "请求缺少内容长度，请在请求里带上内容"));
    m_logins.login(request.body, address, std::move(answer));
}

std::variant<std::shared_ptr<Statement>, Response> Service::beginQuery(const Request &request, std::function<void()> wake)
{
    if (m_phase == Phase::Refusing)
        return errorResponse(503, "stopping", "服务器正在停机，请稍候再试或换一台服务器");
    const auto token = tokenOf(request);
    if (!token)
        return unauthorized();
    if (!request.hasBody)
        return errorResponse(411, "length", "请求缺少内容长度，请在请求里带上查询语句");
    if (!request.isVersion11)
        return errorResponse(400, "request", "查询需要 HTTP/1.1，请检查客户端和代理的设置");
    const auto format = acceptedFormat(request.accept);
    if (!format)
        return errorResponse(406, "accept", "结果只能是 " + std::string(arrowType) + "、text/csv 或 application/json，请检查 Accept");
    Database *const database = databaseFor(request);
    if (!database)
        return errorResponse(404, "database", "没有这个数据库，请检查 X-Kelvara-Database");
    const bool lz4 = request.compression == "lz4";
    auto statement = std::make_shared<Statement>(*database, StatementRequest { token->user, request.body, *format, lz4 }, std::move(wake));
    statement->submit();
    return statement;
}

void Service::endQuery(const Statement &statement, const std::string &address, const std::string &result)
{
    using namespace std::chrono;
    const auto duration = duration_cast<microseconds>(Statement::Clock::now() - statement.begun());
    m_metrics.countStatement(duration, statement.rows(), statement.bytes());
    m_auditLog.add({ .time = system_clock::now() - duration,
        .user = statement.request().user,
        .address = address,
        .database = statement.database().configuration().name,
        .duration = duration_cast<milliseconds>(duration),
        .rows = statement.rows(),
        .bytes = statement.bytes(),
        .result = result,
        .statement = statement.request().sql });
}

Response Service::time(const Request &request)
{
    if (!tokenOf(request))
        return unauthorized();
    std::string text;
    packet::appendTimestamp(localSecondsNow(), text);
    return { .body = "{\"time\":" + jsonText(text) + "}\n" };
}

Response Service::metricsText() const
{
    std::map<std::string, Metrics::Load> databases;
    for (const auto &database : m_databases)
        databases[database->configuration().name] = { database->pool().running(), database->pool().waiting() };
    return { .body = m_metrics.text(databases), .contentType = "text/plain; version=0.0.4; charset=utf-8" };
}

void Service::askDatabases(Answer answer)
{
    if (m_phase != Phase::Serving)
        return answer(plainText(503, "stopping\n"));
    const auto ask = [this, answer] {
        std::string text;
        bool isReady = true;
        for (const auto &database : m_databases) {
            const bool answers = database->isReady();
            isReady &= answers;
            text += database->configuration().name + (answers ? " ok\n" : " unavailable\n");
        }
        answer(plainText(isReady ? 200 : 503, text));
    };
    if (!m_asking.submit({}, ask))
        answer(plainText(503, "busy\n"));
}

/// The token of a user who still exists.
std::optional<Token> Service::tokenOf(const Request &request)
{
    constexpr std::string_view scheme = "Bearer ";
    if (!request.authorization.starts_with(scheme))
        return std::nullopt;
    const auto token = m_key.verify(std::string_view(request.authorization).substr(scheme.size()), secondsNow());
    return token && m_users.contains(token->user) ? token : std::nullopt;
}

/// The database that the request names; the first one when it names none.
Database *Service::databaseFor(const Request &request) const
{
    const std::string name = request.database.empty() ? request.parameter("database") : request.database;
    for (const auto &database : m_databases)
        if (name.empty() || database->configuration().name == name)
            return database.get();
    return nullptr;
}

Response responseTo(Outcome outcome, const std::string &message)
{
    switch (outcome) {
    case Outcome::Refused:
        return errorResponse(403, "refused", message);
    case Outcome::Failed:
        return errorResponse(400, "database", message);
    case Outcome::TooLarge:
        return errorResponse(400, "too_large", message);
    case Outcome::TimeLimit:
        return errorResponse(408, "time_limit", message);
    case Outcome::Busy: {
        Response response = errorResponse(429, "busy", message);
        response.headers = "Retry-After: 1\r\n";
        return response;
    }
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
    case Outcome::Unavailable:
        return "unavailable";
    case Outcome::Busy:
        break;
    }
    return "busy";
}

} // namespace server
