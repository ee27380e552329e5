#include "server/callers.h"

namespace server {

namespace {

/// Only who shows a token of ours is told more than that it is not good.
Response unauthorized(std::string_view code, std::string_view message)
{
    Response response = errorResponse(401, code, message);
    response.headers = "WWW-Authenticate: Bearer\r\n";
    return response;
}

} // namespace

std::variant<Caller, Response> Callers::who(const Request &request)
try {
    constexpr std::string_view scheme = "Bearer ";
    const bool hasToken = request.authorization.starts_with(scheme);
    const auto token = hasToken ? m_key.verify(std::string_view(request.authorization).substr(scheme.size())) : std::nullopt;
    if (!token)
        return unauthorized("token", "没有登录，请先登录");
    if (token->expires <= m_key.now())
        return unauthorized("expired", "登录已经过期，请重新登录");
    AccountPtr account = m_accounts.find(token->user);
    if (!account)
        return unauthorized("removed", "帐户已经删除，请联系管理员");
    if (account->account.locked)
        return unauthorized("locked", "帐户已停用，请联系管理员");
    if (account->generation != token->generation)
        return unauthorized("password_changed", "密码已经更改，请用新密码重新登录");
    return Caller { token->user, std::move(account), token->expires };
} catch (const AccountsUnknown &) {
    return errorResponse(503, "unavailable", "服务器暂时无法核对用户，请稍候再试；仍然如此时请联系管理员");
}

std::variant<Caller, Response> Callers::admitted(const Request &request)
{
    auto caller = who(request);
    if (const auto *known = std::get_if<Caller>(&caller); known && known->account->account.mustChange)
        return errorResponse(403, "must_change", "须先修改密码，才能继续使用");
    return caller;
}

bool Callers::mayGoOn(const Caller &caller, std::string_view database)
try {
    const AccountPtr now = m_accounts.find(caller.user);
    return now == caller.account
        || (now && !now->account.locked && now->generation == caller.account->generation && now->account.databases.has(database));
} catch (const AccountsUnknown &) {
    return true;
}

} // namespace server
