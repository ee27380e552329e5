#pragma once

#include "platform/dataset/row_overlay.h"

#include <span>

namespace platform {

struct OrderKey {
    std::size_t column = 0;
    bool descending = false;
};

/// The rank of each text among the distinct ones in reading order, from 0; equal texts share theirs. This function alone
/// decides how texts are ordered.
std::vector<std::uint32_t> rankTexts(std::span<const std::string_view> texts);

/// Sorts source rows by `keys`, the first deciding before the second. Stable; a null is smaller than every value.
void orderRows(const RowOverlay &rows, std::span<const OrderKey> keys, std::vector<std::uint32_t> &order);

} // namespace platform
