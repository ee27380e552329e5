#pragma once

#include "platform/dataset/order_keys.h"

#include <span>
#include <string_view>

/// Texts in reading order: Han characters by pinyin behind digits and Latin letters, everything else by its code.
struct TextOrder {
    explicit TextOrder(std::span<const std::string_view> texts);

    Places places; ///< the texts in their order, equal ones as they came
    std::vector<std::uint8_t> isNew; ///< for each place whether its text differs from the one before
};
