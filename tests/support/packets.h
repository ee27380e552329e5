#pragma once

#include "packet/packet.h"

/// A packet written as text: a first line of column:type (text, integer, decimal, float or time), then a line per row, cells
/// separated by commas, an empty cell for null.
///
///     packetOf("BILL_CODE:text,WEIGHT:decimal\n"
///              "A1,2.5\n"
///              "A2,\n")
packet::PacketPtr packetOf(std::string_view table);
