#pragma once

#include "demo/generator.h"

#include <span>
#include <string>

namespace demo {

/// The text of --help.
std::string helpText();

struct Options {
    Settings settings;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

/// Reads the arguments after the program's name. Throws std::invalid_argument with a message in Chinese.
Options readOptions(std::span<const std::string> arguments, Moment now);

} // namespace demo
