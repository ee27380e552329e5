#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

/// The grammar of options that all programs share: `--name value` or `--name=value`.
namespace options {

/// One option of a program.
struct Option {
    std::string_view name; ///< with its "--"
    std::string_view argument; ///< what the help calls its value; empty: a switch
    std::string_view help;
    std::function<void(const std::string &value)> take; ///< may throw std::invalid_argument; a switch gets ""
};

/// Gives each argument to its option, and to `bare` what is no option. Throws std::invalid_argument, in Chinese, for an unknown
/// option, a value that is missing or not wanted, and for a bare argument when `bare` is empty.
void read(std::span<const std::string> arguments, std::span<const Option> table, const std::function<void(const std::string &)> &bare = {});

/// The options for the help text, two lines each.
std::string help(std::span<const Option> table);

} // namespace options
