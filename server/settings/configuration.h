#pragma once

#include "options/settings_reader.h"
#include "server/base/system.h"
#include "server/statements/database_configuration.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace server {

/// A table that holds the accounts in place of the users file.
struct AccountsConfiguration {
    std::string query {}; ///< empty: the file
    std::string database {}; ///< empty: the first one
    std::chrono::milliseconds refresh = std::chrono::seconds(1);
    std::chrono::milliseconds stale = std::chrono::seconds(60); ///< how long the last answer serves while there is no newer one
};

/// What the server tells its clients with each login.
struct ClientConfiguration {
    std::string smallestVersion {}; ///< a client that is older must not go on; empty: none is too old
    std::map<std::string, std::string> settings {}; ///< for what the user's own file does not say
};

/// Everything that a server is told. The file's keys have the same names with underscores.
struct Configuration {
    std::string address = "0.0.0.0";
    std::uint16_t port = 8866; ///< 0: any free one
    std::filesystem::path certificate {};
    std::filesystem::path privateKey {};
    std::filesystem::path users {};
    AccountsConfiguration accounts {};
    std::filesystem::path tokenKeyFile {};
    std::string tokenKey {}; ///< the file's text
    ClientConfiguration clients {};
    std::filesystem::path auditLog {}; ///< empty: none
    std::filesystem::path control {}; ///< the file by which the operator looks at the server; empty: none
    std::vector<std::string> trustedProxies {}; ///< whose X-Forwarded-For is believed
    std::vector<std::string> monitors {}; ///< who may see numbers and names of databases without a token, beside this machine

    std::chrono::seconds tokenLife = std::chrono::hours(12);
    std::size_t loginQueue = 1024;
    std::size_t ioThreads = 2;

    std::size_t connections = 4000;
    std::size_t connectionsPerAddress = 500;
    std::size_t headerBytes = 8 * 1024;
    std::chrono::milliseconds handshakeTime = std::chrono::seconds(10);
    std::chrono::milliseconds headerTime = std::chrono::seconds(10); ///< from the first byte of a request to the end of its header
    std::chrono::milliseconds bodyTime = std::chrono::seconds(20);
    std::chrono::milliseconds idleTime = std::chrono::minutes(5); ///< between requests
    std::chrono::milliseconds strangerTime = std::chrono::seconds(20); ///< the same, of a client that has shown no user yet
    std::chrono::milliseconds writeTime = std::chrono::seconds(60); ///< for each 256 KiB that the client takes
    std::chrono::milliseconds drainTime = std::chrono::seconds(3); ///< between "not ready" and the refusal of requests
    std::chrono::milliseconds stopTime = std::chrono::seconds(60); ///< for the statements that still run when the server ends

    std::vector<DatabaseConfiguration> databases {};
    std::function<std::int64_t()> clock = secondsNow; ///< by which tokens end; no key of the file
};

using ConfigurationError = options::SettingsError;

/// Reads the text of a configuration file and no other file. `name` is for the messages; relative paths are taken from `directory`.
/// Throws ConfigurationError.
Configuration parseConfiguration(std::string_view text, const std::string &name, const std::filesystem::path &directory);
/// Reads the file and the token key. Throws ConfigurationError.
Configuration readConfiguration(const std::filesystem::path &path);

} // namespace server
