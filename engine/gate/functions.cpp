#include "engine/gate/functions.h"

#include "engine/gate/schema.h"

#include <algorithm>

namespace engine::gate {

namespace {

constexpr int many = 100;

/// Sorted by name.
constexpr Function functions[] = {
    { "ABS", FunctionResult::Number, 1, 1 },
    { "AVG", FunctionResult::Number, 1, 1, true },
    { "CEIL", FunctionResult::Number, 1, 1 },
    { "COALESCE", FunctionResult::Argument, 2, many },
    { "COUNT", FunctionResult::Number, 1, 1, true },
    { "DECODE", FunctionResult::Argument, 3, many },
    { "FLOOR", FunctionResult::Number, 1, 1 },
    { "GREATEST", FunctionResult::Argument, 1, many },
    { "INSTR", FunctionResult::Number, 2, 4 },
    { "LEAST", FunctionResult::Argument, 1, many },
    { "LENGTH", FunctionResult::Number, 1, 1 },
    { "LOWER", FunctionResult::Text, 1, 1 },
    { "LTRIM", FunctionResult::Text, 1, 2 },
    { "MAX", FunctionResult::Argument, 1, 1, true },
    { "MIN", FunctionResult::Argument, 1, 1, true },
    { "MOD", FunctionResult::Number, 2, 2 },
    { "NULLIF", FunctionResult::Argument, 2, 2 },
    { "NVL", FunctionResult::Argument, 2, 2 },
    { "NVL2", FunctionResult::Argument, 3, 3 },
    { "REGEXP_INSTR", FunctionResult::Number, 2, 6 },
    { "REPLACE", FunctionResult::Text, 2, 3 },
    { "ROUND", FunctionResult::Argument, 1, 2 },
    { "RTRIM", FunctionResult::Text, 1, 2 },
    { "SIGN", FunctionResult::Number, 1, 1 },
    { "SUBSTR", FunctionResult::Text, 2, 3 },
    { "SUM", FunctionResult::Number, 1, 1, true },
    { "TO_CHAR", FunctionResult::Text, 1, 2 },
    { "TO_DATE", FunctionResult::Date, 1, 2 },
    { "TO_NUMBER", FunctionResult::Number, 1, 1 },
    { "TRIM", FunctionResult::Text, 1, 1 },
    { "TRUNC", FunctionResult::Argument, 1, 2 },
    { "UPPER", FunctionResult::Text, 1, 1 },
};

/// Compares a name in capitals with one in any case.
int compared(std::string_view capitals, std::string_view name)
{
    const std::size_t common = std::min(capitals.size(), name.size());
    for (std::size_t position = 0; position < common; ++position) {
        if (const int difference = capitals[position] - capital(name[position]))
            return difference;
    }
    return int(capitals.size()) - int(name.size());
}

} // namespace

const Function *functionNamed(std::string_view name)
{
    const auto *found = std::lower_bound(std::begin(functions), std::end(functions), name,
        [](const Function &function, std::string_view wanted) { return compared(function.name, wanted) < 0; });
    return found != std::end(functions) && compared(found->name, name) == 0 ? found : nullptr;
}

} // namespace engine::gate
