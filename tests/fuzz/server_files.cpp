// The files that an operator writes for the server: the first byte says whether it is the users file or the configuration.

#include "server/settings/configuration.h"
#include "server/users/user_file.h"

#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void readUsers(std::string_view text)
{
    const server::Users users = server::parseUsers(text, "users");
    std::string written;
    for (const auto &[name, hash] : users) {
        require(server::isUserName(name));
        written += name + ":" + hash + "\n";
    }
    require(server::parseUsers(written, "users") == users);
}

void readConfiguration(std::string_view text)
{
    const server::Configuration configuration = server::parseConfiguration(text, "server.conf", "/etc");
    require(!configuration.databases.empty() && !configuration.users.empty());
    for (const auto &database : configuration.databases)
        require(database.workers > 0 && !database.url.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    if (text.empty())
        return 0;
    try {
        text.front() == 'u' ? readUsers(text.substr(1)) : readConfiguration(text.substr(1));
    } catch (const std::runtime_error &error) {
        require(*error.what() != '\0');
    }
    return 0;
}
