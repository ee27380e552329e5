#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace server {

/// The text of --help.
std::string helpText();

struct Options {
    enum class Mode { Help, Version, Serve, CheckConfig, Demo, User, Audit, Status };

    Mode mode = Mode::Serve;
    std::filesystem::path config {};
    std::string database {}; ///< of the demo; empty: the newest under the data folder
    std::uint16_t port = 8866; ///< of the demo
    std::filesystem::path data = "run-data"; ///< of the demo

    std::string userCommand {}; ///< add, set, passwd, remove, list or import
    std::filesystem::path users {};
    std::string userName {}; ///< or the file to import
    std::vector<std::string> userFields {}; ///< "field=value"
    bool passwordFromInput = false;

    std::filesystem::path auditLog {}; ///< empty: that of the configuration
    std::string auditUser {}; ///< empty: everybody
    std::string auditFrom {};
    std::string auditTo {};
    double slowSeconds = 0; ///< 0: whatever took place
    bool asJson = false;

    std::filesystem::path control {}; ///< empty: that of the configuration
    std::string endedStatement {}; ///< empty: none, the status shows what runs
};

/// Reads the arguments after the program's name. Throws std::invalid_argument with a message in Chinese.
Options readOptions(std::span<const std::string> arguments);

} // namespace server
