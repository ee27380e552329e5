#pragma once

#include <string>
#include <vector>

namespace engine::test {

/// What a screen asks. A value of the row that was clicked stands as '{FIELD}'.
struct ScreenStatement {
    std::string screen;
    std::string sql;
    bool isRefused = false; ///< the database has no such column
};

/// Every statement that the screens send under the settings of tests/cases, each once, in the order of the screens.
std::vector<ScreenStatement> screenStatements();

} // namespace engine::test
