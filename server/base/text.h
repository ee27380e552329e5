#pragma once

#include "options/text.h"

#include <algorithm>
#include <string_view>

namespace server {

using options::nextPart;
using options::trimmed;

/// Of letters, A to Z alone have two cases here.
inline bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    const auto small = [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter; };
    return std::equal(
        left.begin(), left.end(), right.begin(), right.end(), [&](char one, char other) { return small(one) == small(other); });
}

} // namespace server
