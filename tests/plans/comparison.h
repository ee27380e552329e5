#pragma once

#include "tests/engine/screen_statements.h"
#include "tests/plans/plan_reader.h"

#include <functional>

namespace engine::test {

/// A statement on two networks of which the second is larger.
struct Compared {
    ScreenStatement statement;
    Plan small;
    Plan large;
    std::string error; ///< of a database, when a plan could not be read

    /// Whether the work grew faster than 1.2 times what came of it. `growth`: of the scans of one day.
    bool growsTooFast(double growth) const;
    bool readsWholeTables() const { return !large.wholeTables.empty(); }
};

/// How many times as many arrivals the large network has on the day that the screens ask for.
double growthOfDay(const std::string &small, const std::string &large);

/// Every statement of the screens on both networks, whose addresses are openEngine()'s. What a row's values narrow is left wide, and
/// lists of waybill numbers hold real ones.
std::vector<Compared> compare(const std::string &small, const std::string &large, Sequential scans);

} // namespace engine::test
