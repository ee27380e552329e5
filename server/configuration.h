#pragma once

#include "server/statements/database_configuration.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace server {

/// Everything that a server is told. The file's keys have the same names with underscores.
struct Configuration {
    std::string address = "0.0.0.0";
    std::uint16_t port = 8866; ///< 0: any free one
    std::filesystem::path certificate {};
    std::filesystem::path privateKey {};
    std::filesystem::path users {};
    std::filesystem::path tokenKeyFile {};
    std::string tokenKey {}; ///< the file's text
    std::filesystem::path auditLog {}; ///< empty: none
    std::vector<std::string> trustedProxies {}; ///< whose X-Forwarded-For is believed

    std::chrono::seconds tokenLife = std::chrono::hours(12);
    std::size_t loginQueue = 64;
    std::size_t ioThreads = 2;

    std::size_t connections = 4000;
    std::size_t connectionsPerAddress = 500;
    std::size_t headerBytes = 8 * 1024;
    std::chrono::milliseconds handshakeTime = std::chrono::seconds(10);
    std::chrono::milliseconds headerTime = std::chrono::seconds(10); ///< from the first byte of a request to the end of its header
    std::chrono::milliseconds bodyTime = std::chrono::seconds(20);
    std::chrono::milliseconds idleTime = std::chrono::minutes(5); ///< between requests
    std::chrono::milliseconds writeTime = std::chrono::seconds(60); ///< for each 256 KiB that the client takes
    std::chrono::milliseconds leaveTime = std::chrono::seconds(3); ///< between "not ready" and the refusal of requests
    std::chrono::milliseconds stopTime = std::chrono::seconds(60); ///< for the statements that still run when the server ends

    std::vector<DatabaseConfiguration> databases {};
};

/// what() names the file, the line and the key, and says what to write.
class ConfigurationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the text of a configuration file. `name` is for the messages; relative paths are taken from `directory`.
/// Reads the token key file as well. Throws ConfigurationError.
Configuration parseConfiguration(std::string_view text, const std::string &name, const std::filesystem::path &directory);
Configuration readConfiguration(const std::filesystem::path &path);
/// Looks whether certificate, key, users and the audit log's folder can be used. Throws std::runtime_error.
void checkFiles(const Configuration &configuration);

} // namespace server
