#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace server {

/// Some names, or all there are.
struct NameList {
    bool all = false;
    std::vector<std::string> names {};

    [[nodiscard]] bool has(std::string_view name) const { return all || std::find(names.begin(), names.end(), name) != names.end(); }
    bool operator==(const NameList &) const = default;
};

/// Who may come in, and what the account may see. An account that has nothing but a password sees as much as before there were
/// further fields; only row rules apply to it, and no row is its own.
struct Account {
    enum class RowRules { Apply, Off };

    std::string hash {}; ///< of the password, see hashPassword()
    std::string employeeCode {};
    std::string employeeName {};
    std::string site {}; ///< where it logs in; empty: the user chooses
    NameList sites {}; ///< that it may ask for beside its own; all of them only without row rules
    std::map<std::string, std::string, std::less<>> screens { { "*", "111" } }; ///< with their rights; "*": those that are not named
    NameList databases { .all = true };
    RowRules rowRules = RowRules::Apply;
    bool mustChange = false; ///< the password, before anything else
    bool locked = false;

    /// All that it may ask for.
    [[nodiscard]] NameList allSites() const;
    bool operator==(const Account &) const = default;
};

/// 1 to 64 bytes of UTF-8 without colon, blanks at the ends and control characters, not beginning with #.
bool isUserName(std::string_view name);

/// The names of all fields but the password's: employee_code, site and so on, as files, tables and commands call them.
std::vector<std::string_view> accountFields();
/// Gives a field the value that a text stands for; names in a list are separated by commas. Throws std::invalid_argument, which says in
/// Chinese what the field wants.
void setAccountField(Account &account, std::string_view field, std::string_view text);
/// The field as setAccountField() takes it.
std::string accountField(const Account &account, std::string_view field);
/// What only several fields together can get wrong. Throws std::invalid_argument.
void checkAccount(const Account &account);

/// "name:hash" and ":field=value" for each field that differs from those of an account with nothing but a password.
std::string accountLine(const std::string &name, const Account &account);
/// Reads such a line. Throws std::invalid_argument.
std::pair<std::string, Account> parseAccountLine(std::string_view line);

/// The members of a JSON object that a client is told of its account, joined with commas.
std::string accountJson(const std::string &name, const Account &account);

} // namespace server
