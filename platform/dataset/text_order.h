#pragma once

#include "platform/dataset/order_keys.h"

#include <span>
#include <string_view>

namespace platform {

/// Texts in reading order: Han characters by pinyin behind digits and Latin letters, everything else by its code.
struct TextOrder {
    explicit TextOrder(std::span<const std::string_view> texts);

    Permutation permutation; ///< the texts in their order, equal ones as they came
    std::vector<std::uint8_t> isNew; ///< for each text in order whether it differs from the one before
};

} // namespace platform
