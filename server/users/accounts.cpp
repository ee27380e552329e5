#include "server/users/accounts.h"

#include "server/users/token.h"

namespace server {

namespace {

std::shared_ptr<const engine::Reader> readerOf(const Account &account)
{
    if (account.rowRules == Account::RowRules::Off)
        return nullptr;
    return std::make_shared<const engine::Reader>(account.allSites().names, account.site, account.employeeCode);
}

} // namespace

LiveAccounts liveAccounts(const Users &users)
{
    LiveAccounts accounts;
    for (const auto &[name, account] : users)
        accounts.emplace(name, std::make_shared<const LiveAccount>(LiveAccount { account, generationOf(account.hash), readerOf(account) }));
    return accounts;
}

void Accounts::setPassword(const std::string &, const std::string &, const std::string &)
{
    throw std::runtime_error("密码由中心的员工系统管理，不能在这里更改");
}

} // namespace server
