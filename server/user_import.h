#pragma once

#include "server/users/accounts.h"

#include <string>
#include <string_view>
#include <vector>

namespace server {

/// A first password that was made for a user, who must change it.
struct FirstPassword {
    std::string user {};
    std::string password {};
};

/// The users of a CSV text whose first row names the columns, in Chinese or as accountFields() does, beside user_name and password.
/// All or nothing: throws std::runtime_error, which names the line, before anything has changed.
class UserImport {
public:
    explicit UserImport(std::string_view csv);
    /// Hashes the passwords, 20 ms each, so better not while others wait. Users whom `users` does not have, and for whom the text has no
    /// password, get one.
    void hashPasswords(const Users &users);
    /// Adds new users and changes those that are there: an empty cell leaves what they have.
    void apply(Users &users) const;

    const std::vector<FirstPassword> &firstPasswords() const { return m_firstPasswords; }
    std::size_t size() const { return m_rows.size(); }

private:
    struct Row {
        int line = 0;
        std::string user {};
        std::string password {};
        std::string hash {};
        bool mustChange = false;
        std::vector<std::pair<std::string_view, std::string>> fields {};
    };
    Account changed(const Row &row, const Account &before) const;

    std::vector<Row> m_rows;
    std::vector<FirstPassword> m_firstPasswords;
};

} // namespace server
