// The file of accounts: what was read from it can be written and is read again.

#include "server/users/user_file.h"
#include "tests/fuzz/require.h"

#include <optional>
#include <stdexcept>

namespace {

/// Nothing when the text is refused, for a reason that is told.
std::optional<server::Users> usersOf(std::string_view text)
{
    try {
        return server::parseUsers(text, "users");
    } catch (const std::runtime_error &error) {
        require(*error.what() != '\0');
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto users = usersOf({ reinterpret_cast<const char *>(data), size });
    if (!users)
        return 0;
    for (const auto &[name, account] : *users)
        require(server::isUserName(name) && account.hash.starts_with("$argon2id$"));
    require(usersOf(server::usersText(*users)) == users);
    return 0;
}
