// The server's configuration, as an operator writes it.

#include "server/settings/configuration.h"
#include "tests/fuzz/require.h"

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    try {
        const server::Configuration configuration
            = server::parseConfiguration({ reinterpret_cast<const char *>(data), size }, "server.conf", "/etc");
        require(!configuration.databases.empty() && configuration.users.empty() != configuration.accounts.query.empty());
        for (const auto &database : configuration.databases)
            require(database.workers > 0 && !database.url.empty());
    } catch (const std::runtime_error &error) {
        require(*error.what() != '\0');
    }
    return 0;
}
