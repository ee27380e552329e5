#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

/// The grammar of options that all programs share: `--name value` or `--name=value`, and in files of settings `name = value`.
namespace options {

/// One option of a program.
struct Option {
    std::string_view name; ///< with its "--"
    std::string_view argument; ///< what the help calls its value; empty: a switch
    std::string_view help;
    std::function<void(const std::string &value)> take; ///< may throw std::invalid_argument; a switch gets "", or "no" from a file
    std::string_view example = {}; ///< a value, for the sample of a file; empty: files must not say it
};

/// Gives each argument to its option, and to `bare` what is no option. Throws std::invalid_argument, in Chinese, for an unknown
/// option, a value that is missing or not wanted, and for a bare argument when `bare` is empty.
void read(std::span<const std::string> arguments, std::span<const Option> table, const std::function<void(const std::string &)> &bare = {});

/// The key in files: the name without its "--", and _ for -.
std::string keyOf(const Option &option);
/// Gives the values of a file's text to the options that files may say; `file` is its name. Throws SettingsError.
void readSettings(std::string_view text, const std::string &file, std::span<const Option> table);
/// A file with every key in a comment, and what it means.
std::string settingsSample(std::span<const Option> table);

/// The options for the help text, two lines each.
std::string help(std::span<const Option> table);

} // namespace options
