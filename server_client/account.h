#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace server_client {

/// What the servers say of the user who has logged in. Servers that say nothing of a field leave what it has here.
struct Account {
    std::string user {};
    std::string employeeCode {};
    std::string employeeName {};
    std::string site {}; ///< empty: the user chooses
    std::optional<std::vector<std::string>> sites {}; ///< that the user may ask for; nothing: all
    std::map<std::string, std::string, std::less<>> screens { { "*", "111" } }; ///< with their rights; "*": those that are not named
    bool mustChangePassword = false; ///< before anything else is answered
    std::string smallestClient {}; ///< an older one must not go on; empty: none is too old
    std::map<std::string, std::string> settings {}; ///< for what the user's own file does not say
    std::vector<std::string> databaseFaults {}; ///< what the servers' databases lack that screens need, in words

    /// Reads the answer to a login. Nothing unless it is an object of JSON with such members.
    static std::optional<Account> parse(const std::string &json);
};

/// Overwrites a secret before its memory goes to somebody else.
void wipe(std::string &secret);

} // namespace server_client
