#pragma once

#include "demo/generator.h"

#include <span>
#include <string>
#include <string_view>

namespace demo {

extern const std::string_view helpText;

struct Options {
    Settings settings;
    bool wantsHelp = false;
};

/// Reads the arguments after the program's name. Throws std::invalid_argument with a message in Chinese.
Options readOptions(std::span<const std::string> arguments, Moment now);

} // namespace demo
