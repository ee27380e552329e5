#pragma once

#include "packet/block_sink.h"

#include <string>
#include <vector>

namespace packet::test {

/// Keeps what a sink gets as texts, because nothing of it has to live longer than the call.
class Recorder : public BlockSink {
public:
    void begin(const std::vector<Field> &schema) override;
    void block(const Block &block, std::span<const Dictionary *const> dictionaries) override;
    void end(bool truncated) override;

    std::vector<Field> schema {};
    std::vector<std::vector<std::string>> rows {}; ///< "null" for null
    std::vector<std::size_t> rowsAtBlock {}; ///< `rowsSent` of the test when a block arrived
    std::size_t rowsSent = 0;
    bool begun = false;
    bool ended = false;
    bool truncated = false;
};

/// A cell as text; "null" for null.
std::string cell(const Packet &packet, std::size_t column, std::size_t row);
std::vector<std::vector<std::string>> cells(const Packet &packet);

} // namespace packet::test
