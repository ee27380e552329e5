// The part of the service that is about its users' accounts.

#include "packet/packet.h"
#include "server/account_query.h"
#include "server/base/json.h"
#include "server/base/system.h"
#include "server/service.h"
#include "server/users/account_table.h"
#include "server/users/user_file.h"

#include <memory>

namespace server {

namespace {

constexpr auto reportsAreCountedFor = std::chrono::minutes(1);
constexpr int mostReports = 30; ///< of one user in that time
constexpr std::size_t longestScreen = 100; ///< bytes

Response lengthRequired() { return errorResponse(411, "length", "请求缺少内容长度，请在请求里带上内容"); }
Response done() { return { .body = "{}\n" }; }

} // namespace

std::unique_ptr<Accounts> Service::makeAccounts(const Configuration &configuration)
{
    if (configuration.accounts.query.empty())
        return std::make_unique<UserFile>(configuration.users);
    const auto query = std::make_shared<AccountQuery>(configuration);
    return std::make_unique<AccountTable>([query](const std::stop_token &stop) { return query->ask(stop); },
        AccountTable::Times { configuration.accounts.refresh, configuration.accounts.stale });
}

void Service::login(const Request &request, const std::string &address, const Answer &answer)
{
    if (!request.hasBody)
        return answer(lengthRequired());
    m_logins.login(request.body, address, answer);
}

void Service::changePassword(const Request &request, const std::string &address, const Answer &answer)
{
    const auto who = m_callers.who(request);
    if (const auto *refusal = std::get_if<Response>(&who))
        return answer(*refusal);
    if (!request.hasBody)
        return answer(lengthRequired());
    m_logins.changePassword(std::get<Caller>(who).user, request.body, address, answer);
}

/// No server keeps tokens, so the client forgets its own; what is left to do is the line.
void Service::logout(const Request &request, const std::string &address, const Answer &answer)
{
    const auto who = m_callers.who(request);
    if (const auto *refusal = std::get_if<Response>(&who))
        return answer(*refusal);
    const auto &user = std::get<Caller>(who).user;
    if (mayReport(user))
        m_auditLog.add(AuditLine("logout").add("user", user).add("address", address));
    answer(done());
}

void Service::me(const Request &request, const std::string &, const Answer &answer)
{
    const auto who = m_callers.who(request);
    if (const auto *refusal = std::get_if<Response>(&who))
        return answer(*refusal);
    const auto &caller = std::get<Caller>(who);
    answer({ .body = "{" + accountJson(caller.user, caller.account->account) + ",\"expires\":" + std::to_string(caller.expires) + "}\n" });
}

/// What a client has to tell for the audit log.
void Service::takeReport(const Request &request, const std::string &address, const Answer &answer)
{
    const auto admitted = m_callers.admitted(request);
    if (const auto *refusal = std::get_if<Response>(&admitted))
        return answer(*refusal);
    const auto fields = readJsonTexts(request.body);
    if (!fields || !fields->contains("screen") || !fields->contains("event") || fields->at("event") != "refused_screen"
        || fields->at("screen").size() > longestScreen)
        return answer(errorResponse(400, "request", "请求应是 {\"event\":\"refused_screen\",\"screen\":\"窗口名\"} 形式的 JSON"));
    const auto &user = std::get<Caller>(admitted).user;
    if (!mayReport(user))
        return answer(errorResponse(429, "busy", "报告太多，请稍候再报"));
    m_auditLog.add(
        AuditLine("screen").add("user", user).add("address", address).add("screen", fields->at("screen")).add("result", "refused"));
    answer(done());
}

/// A user cannot fill the log with what costs nothing.
bool Service::mayReport(const std::string &user)
{
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard lock(m_reportMutex);
    if (now - m_reportsSince > reportsAreCountedFor) {
        m_reportsSince = now;
        m_reports.clear();
    }
    return ++m_reports[user] <= mostReports;
}

void Service::time(const Request &request, const std::string &, const Answer &answer)
{
    const auto admitted = m_callers.admitted(request);
    if (const auto *refusal = std::get_if<Response>(&admitted))
        return answer(*refusal);
    std::string text;
    packet::appendTimestamp(localSecondsNow(), text);
    answer({ .body = "{\"time\":" + jsonText(text) + "}\n" });
}

} // namespace server
