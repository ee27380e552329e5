#pragma once

#include "demo/calendar.h"
#include "demo/random.h"

#include <cstdint>
#include <vector>

namespace demo {

/// When parcels are picked up: through the working hours of each day, fewer at the week's end.
class Schedule {
public:
    /// From midnight of `firstDay` to `end`. Throws std::invalid_argument when no working hour lies between.
    Schedule(Moment firstDay, Moment end);

    /// When the `index`-th of `count` parcels is picked up. A greater index is picked up in the same hour or a later one.
    Moment pickUp(std::uint64_t index, std::uint64_t count, Random &random) const;

private:
    struct Slot {
        Moment start;
        Moment length;
        std::uint64_t limit; ///< the parcels up to its end, relative to the last slot's
    };
    std::vector<Slot> m_slots;
};

} // namespace demo
