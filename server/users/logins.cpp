#include "server/users/logins.h"

#include "server/base/address.h"
#include "server/base/json.h"
#include "server/base/log.h"
#include "server/users/password.h"

namespace server {

namespace {

constexpr std::size_t threads = 2; ///< each needs 19 MiB and a processor for its whole time
constexpr std::size_t longestName = 256;

constexpr auto busyMessage = "正在登录的用户太多，请稍候再试";

Response comeAgain(std::chrono::seconds wait, std::string_view code, const std::string &message)
{
    Response response = errorResponse(429, code, message);
    response.headers = "Retry-After: " + std::to_string(wait.count()) + "\r\n";
    return response;
}

/// Compared for names that do not exist, so that they take as long. Nobody knows its password.
const std::string &nobodysHash()
{
    static const std::string hash = hashPassword(randomHex(16));
    return hash;
}

} // namespace

Logins::Logins(
    UserFile &users, const TokenKey &key, std::chrono::seconds tokenLife, std::size_t waiting, Metrics &metrics, AuditLog &auditLog)
    : m_users(users)
    , m_key(key)
    , m_tokenLife(tokenLife)
    , m_metrics(metrics)
    , m_auditLog(auditLog)
    , m_pool({ threads, waiting, threads, (waiting + 1) / 2 })
{
    (void)nobodysHash(); // the first one to need it would take twice as long
}

void Logins::login(const std::string &body, const std::string &address, Answer answer)
{
    const auto fields = readJsonTexts(body);
    if (!fields || !fields->contains("user") || !fields->contains("password"))
        return answer(errorResponse(400, "request", "登录请求应是 {\"user\":\"用户名\",\"password\":\"密码\"} 形式的 JSON"));
    const Attempt attempt { fields->at("user"), fields->at("password"), address, addressGroup(address) };
    if (attempt.user.size() > longestName || attempt.password.size() > longestPassword)
        return answer(errorResponse(400, "request", "用户名或密码太长，请检查输入"));
    const auto turn = m_throttle.begin(LoginThrottle::Clock::now(), attempt.user, attempt.group);
    if (turn.answer == LoginThrottle::Answer::Wait)
        return answer(comeAgain(turn.wait, "login_wait", "登录失败次数过多，请在 " + std::to_string(turn.wait.count()) + " 秒后再试"));
    if (turn.answer == LoginThrottle::Answer::Busy)
        return answer(comeAgain(turn.wait, "busy", busyMessage));
    if (!m_pool.submit(attempt.group, [this, attempt, answer] { answer(compare(attempt)); })) {
        finish(attempt, LoginThrottle::Result::NotTried);
        answer(comeAgain(std::chrono::seconds(1), "busy", busyMessage));
    }
}

Response Logins::compare(const Attempt &attempt)
try {
    const auto account = m_users.find(attempt.user);
    ++m_metrics.passwordChecks;
    const bool matches = passwordMatches(account ? account->hash : nobodysHash(), attempt.password);
    if (!matches || !account)
        return wrong(attempt, account.has_value());
    finish(attempt, LoginThrottle::Result::Right);
    m_auditLog.add(AuditLine("login").add("user", attempt.user).add("address", attempt.address).add("result", "ok"));
    return tokenFor(attempt.user, account->generation);
} catch (const std::exception &error) {
    finish(attempt, LoginThrottle::Result::NotTried);
    logLine(std::string("登录出错：") + error.what());
    return errorResponse(503, "unavailable", "服务器暂时无法核对用户，请稍候再试；仍然如此时请联系管理员");
}

Response Logins::wrong(const Attempt &attempt, bool exists)
{
    ++m_metrics.loginFailures;
    finish(attempt, LoginThrottle::Result::Wrong);
    // A name that does not exist may be a password in the wrong field, so it stands nowhere.
    m_auditLog.add(AuditLine("login")
                       .add("user", exists ? attempt.user : std::string())
                       .add("address", attempt.address)
                       .add("result", exists ? "wrong password" : "unknown user"));
    return errorResponse(401, "login", "用户名或密码不正确，请重新输入");
}

void Logins::finish(const Attempt &attempt, LoginThrottle::Result result)
{
    m_throttle.finish(LoginThrottle::Clock::now(), attempt.user, attempt.group, result);
}

Response Logins::tokenFor(const std::string &user, const std::string &generation) const
{
    const std::int64_t expires = m_key.now() + m_tokenLife.count();
    const std::string token = m_key.sign({ user, expires, generation });
    return { .body = "{\"token\":" + jsonText(token) + ",\"expires\":" + std::to_string(expires) + "}\n" };
}

} // namespace server
