#pragma once

#include "packet/packet.h"

namespace packet {

/// Takes a result piece by piece from the threads that read the rows, one call at a time. What it throws ends the reading.
/// A sink that waits for somebody holds the reading up and has to notice itself when the statement shall stop.
class BlockSink {
public:
    virtual ~BlockSink() = default;
    /// Once, before the first block; also for an empty result. The scale of a Decimal field is the one that the blocks, each at
    /// a scale of its own, can be brought to without losing a digit, unless a later value is unlike all before it.
    virtual void begin(const std::vector<Field> &schema) = 0;
    /// Every block but the last has Packet::blockRows rows. dictionaries[c] (null for columns without) holds at least every
    /// text that the block's indexes name; it only ever grows.
    virtual void block(const Block &block, std::span<const Dictionary *const> dictionaries) = 0;
    /// Not called when the reading fails.
    virtual void end(bool truncated) = 0;
};

} // namespace packet
