#pragma once

#include <cstdint>
#include <string_view>

namespace engine::gate {

/// The value of a function, as far as its name tells.
enum class FunctionResult : std::uint8_t { Argument, Number, Text, Date };

struct Function {
    std::string_view name; ///< in capitals
    FunctionResult result;
    int fewest; ///< arguments
    int most;
    bool aggregate = false;
};

/// The functions that a statement may call; null for any other name, case ignored.
const Function *functionNamed(std::string_view name);

} // namespace engine::gate
