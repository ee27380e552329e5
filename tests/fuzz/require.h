#pragma once

#include <cstdlib>

/// Ends the program when the condition does not hold, with assertions or without: a fuzzing engine keeps the input then.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
