#pragma once

#include "packet/packet.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace platform {

/// The exact sum of a Decimal or Int64 column of a packet; nulls are skipped. Much cheaper than adding decimal by decimal.
packet::Decimal sumOfColumn(const packet::Packet &packet, std::size_t column);
/// The same over some of the packet's rows.
packet::Decimal sumOfColumn(const packet::Packet &packet, std::size_t column, std::span<const std::uint32_t> rows);

} // namespace platform
