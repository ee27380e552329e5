#include "server_client/account.h"

#include <nlohmann/json.hpp>
#include <openssl/crypto.h>

namespace server_client {

std::optional<Account> Account::parse(const std::string &json)
try {
    const auto object = nlohmann::json::parse(json);
    Account account;
    account.user = object.value("user", account.user);
    account.site = object.value("site", account.site);
    account.screens = object.value("screens", account.screens);
    account.mustChangePassword = object.value("must_change_password", false);
    if (const auto employee = object.find("employee"); employee != object.end()) {
        account.employeeCode = employee->value("code", "");
        account.employeeName = employee->value("name", "");
    }
    if (const auto client = object.find("client"); client != object.end()) {
        account.smallestClient = client->value("smallest_version", "");
        account.settings = client->value("settings", account.settings);
        account.databaseFaults = client->value("database_faults", account.databaseFaults);
    }
    if (const auto sites = object.find("sites"); sites != object.end() && *sites != "*")
        account.sites = sites->get<std::vector<std::string>>();
    return account;
} catch (const nlohmann::json::exception &) {
    return std::nullopt;
}

void wipe(std::string &secret)
{
    OPENSSL_cleanse(secret.data(), secret.size());
    secret.clear();
}

} // namespace server_client
