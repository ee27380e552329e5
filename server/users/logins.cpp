#include "server/users/logins.h"

#include "server/base/address.h"
#include "server/base/json.h"
#include "server/base/log.h"
#include "server/users/password.h"

#include <utility>

namespace server {

namespace {

constexpr std::size_t threads = 2; ///< each needs 19 MiB and a processor for its whole time
constexpr std::size_t longestName = 256;

constexpr auto busyMessage = "正在登录的用户太多，请稍候再试";

Response unavailable() { return errorResponse(503, "unavailable", "服务器暂时无法核对用户，请稍候再试；仍然如此时请联系管理员"); }

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

Logins::Logins(Accounts &accounts, const TokenKey &key, std::chrono::seconds tokenLife, std::size_t waiting,
    std::function<std::string()> clientJson, Metrics &metrics, AuditLog &auditLog)
    : m_accounts(accounts)
    , m_key(key)
    , m_tokenLife(tokenLife)
    , m_clientJson(std::move(clientJson))
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
    submit(attempt, answer);
}

void Logins::changePassword(const std::string &user, const std::string &body, const std::string &address, Answer answer)
{
    const auto fields = readJsonTexts(body);
    if (!fields || !fields->contains("old_password") || !fields->contains("password"))
        return answer(errorResponse(400, "request", "请求应是 {\"old_password\":\"原密码\",\"password\":\"新密码\"} 形式的 JSON"));
    if (!m_accounts.keepsPasswords())
        return answer(errorResponse(403, "centre", "密码由中心的员工系统管理，请在那里更改"));
    const Attempt attempt { user, fields->at("old_password"), address, addressGroup(address), fields->at("password") };
    if (attempt.password.size() > longestPassword || !isPassword(attempt.newPassword))
        return answer(errorResponse(400, "password", "新密码至少要 8 个字节，最多 1024 个字节；密码没有更改"));
    if (attempt.newPassword == attempt.password)
        return answer(errorResponse(400, "password", "新密码不能与原密码相同；密码没有更改"));
    submit(attempt, answer);
}

void Logins::submit(const Attempt &attempt, const Answer &answer)
{
    const auto turn = m_throttle.begin(LoginThrottle::Clock::now(), attempt.user, attempt.group);
    if (turn.answer == LoginThrottle::Answer::Wait)
        return answer(comeAgain(turn.wait, "login_wait", "密码错误次数过多，请在 " + std::to_string(turn.wait.count()) + " 秒后再试"));
    if (turn.answer == LoginThrottle::Answer::Busy)
        return answer(comeAgain(turn.wait, "busy", busyMessage));
    if (!m_pool.submit(attempt.group, [this, attempt, answer] { answer(compare(attempt)); })) {
        finish(attempt, LoginThrottle::Result::NotTried);
        answer(comeAgain(std::chrono::seconds(1), "busy", busyMessage));
    }
}

Response Logins::compare(const Attempt &attempt)
{
    AccountPtr account;
    bool matches = false;
    try {
        account = m_accounts.find(attempt.user);
        ++m_metrics.passwordChecks;
        matches = passwordMatches(account ? account->account.hash : nobodysHash(), attempt.password);
    } catch (const std::exception &error) {
        finish(attempt, LoginThrottle::Result::NotTried);
        logLine(std::string("登录出错：") + error.what());
        return unavailable();
    }
    if (!matches || !account)
        return wrong(attempt, account);
    finish(attempt, LoginThrottle::Result::Right);
    // Only who knows the password may know this.
    if (account->account.locked) {
        log(attempt, attempt.user, "locked");
        return errorResponse(403, "locked", "帐户已停用，请联系管理员");
    }
    try {
        if (!attempt.newPassword.empty())
            return change(attempt, *account);
        const Response response = tokenFor(attempt.user, *account);
        log(attempt, attempt.user, "ok");
        return response;
    } catch (const std::exception &error) {
        logLine(std::string("登录出错：") + error.what());
        return unavailable();
    }
}

/// The token of before ends with the password, so the user gets one for the new.
Response Logins::change(const Attempt &attempt, const LiveAccount &account)
try {
    const std::string hash = hashPassword(attempt.newPassword);
    m_accounts.setPassword(attempt.user, account.account.hash, hash);
    log(attempt, attempt.user, "ok");
    LiveAccount changed { account.account, generationOf(hash) };
    changed.account.mustChange = false;
    return tokenFor(attempt.user, changed);
} catch (const std::exception &error) {
    log(attempt, attempt.user, "failed");
    logLine("用户“" + attempt.user + "”的密码没有更改：" + error.what());
    return errorResponse(503, "unavailable", "服务器现在不能保存新密码，密码没有更改；请稍候再试，仍然如此时请联系管理员");
}

Response Logins::wrong(const Attempt &attempt, const AccountPtr &account)
{
    ++m_metrics.loginFailures;
    finish(attempt, LoginThrottle::Result::Wrong);
    // A name that does not exist may be a password in the wrong field, so it stands nowhere.
    log(attempt, account ? attempt.user : std::string(), account ? "wrong password" : "unknown user");
    if (!attempt.newPassword.empty())
        return errorResponse(403, "old_password", "原密码不正确，密码没有更改");
    return errorResponse(401, "login", "用户名或密码不正确，请重新输入");
}

void Logins::log(const Attempt &attempt, const std::string &user, std::string_view result)
{
    const auto event = attempt.newPassword.empty() ? "login" : "password";
    m_auditLog.add(AuditLine(event).add("user", user).add("address", attempt.address).add("result", result));
}

void Logins::finish(const Attempt &attempt, LoginThrottle::Result result)
{
    m_throttle.finish(LoginThrottle::Clock::now(), attempt.user, attempt.group, result);
}

Response Logins::tokenFor(const std::string &user, const LiveAccount &account) const
{
    const std::int64_t expires = m_key.now() + m_tokenLife.count();
    const std::string token = m_key.sign({ user, expires, account.generation });
    return { .body = "{\"token\":" + jsonText(token) + ",\"expires\":" + std::to_string(expires) + "," + accountJson(user, account.account)
            + ",\"client\":" + m_clientJson() + "}\n" };
}

} // namespace server
