#include "server/users/logins.h"

#include "server/base/json.h"
#include "server/base/log.h"
#include "server/users/password.h"

namespace server {

namespace {

constexpr std::size_t threads = 2; ///< each needs 19 MiB and a processor for its whole time
constexpr std::size_t longestName = 256;

Response slowDown(std::chrono::seconds wait, const std::string &message)
{
    Response response = errorResponse(429, "busy", message);
    response.headers = "Retry-After: " + std::to_string(wait.count()) + "\r\n";
    return response;
}

} // namespace

Logins::Logins(UserFile &users, const TokenKey &key, std::chrono::seconds tokenLife, std::size_t waiting, Metrics &metrics)
    : m_users(users)
    , m_key(key)
    , m_tokenLife(tokenLife)
    , m_metrics(metrics)
    , m_nobodysHash(hashPassword(randomHex(16)))
    , m_pool({ threads, waiting, threads, waiting })
{
}

void Logins::login(const std::string &body, const std::string &address, Answer answer)
{
    const auto fields = readJsonTexts(body);
    if (!fields || !fields->contains("user") || !fields->contains("password"))
        return answer(errorResponse(400, "request", "登录请求应是 {\"user\":\"用户名\",\"password\":\"密码\"} 形式的 JSON"));
    const Attempt attempt { fields->at("user"), fields->at("password"), address };
    if (attempt.user.size() > longestName || attempt.password.size() > longestPassword)
        return answer(errorResponse(400, "request", "用户名或密码太长，请检查输入"));
    const auto wait = m_throttle.tryAt(LoginThrottle::Clock::now(), attempt.user, address);
    if (wait.count() > 0)
        return answer(slowDown(wait, "登录失败次数过多，请在 " + std::to_string(wait.count()) + " 秒后再试"));
    if (!m_pool.submit(address, [this, attempt, answer] { answer(compare(attempt)); }))
        answer(slowDown(std::chrono::seconds(1), "正在登录的用户太多，请稍候再试"));
}

Response Logins::compare(const Attempt &attempt)
try {
    const auto hash = m_users.hashOf(attempt.user);
    ++m_metrics.passwordChecks;
    const bool matches = passwordMatches(hash.value_or(m_nobodysHash), attempt.password);
    if (!matches || !hash) {
        ++m_metrics.loginFailures;
        // A name that does not exist may be a password in the wrong field.
        logLine("登录失败，来自 " + attempt.address + (hash ? "，用户 " + jsonText(attempt.user) : std::string("，用户不存在")));
        return errorResponse(401, "login", "用户名或密码不正确，请重新输入");
    }
    m_throttle.succeeded(attempt.user, attempt.address);
    return tokenFor(attempt.user);
} catch (const std::exception &error) {
    logLine(std::string("登录出错：") + error.what());
    return errorResponse(503, "unavailable", "服务器暂时无法登录，请稍候再试");
}

Response Logins::tokenFor(const std::string &user) const
{
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch());
    const std::int64_t expires = (now + m_tokenLife).count();
    return { .body = "{\"token\":" + jsonText(m_key.sign({ user, expires })) + ",\"expires\":" + std::to_string(expires) + "}\n" };
}

} // namespace server
