#pragma once

#include "packet/block_sink.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace packet {

/// Of the bodies of the messages; it pays on slow lines only.
enum class Compression { None, Lz4 };

/// Writes a result as a stream of messages, see docs/packet.md.
class StreamWriter : public BlockSink {
public:
    /// Gets whole messages, to be used before it returns. What it throws passes through.
    using Output = std::function<void(std::span<const std::byte>)>;

    explicit StreamWriter(Output output, Compression compression = Compression::None);
    StreamWriter(const StreamWriter &) = delete;
    ~StreamWriter() override;

    void begin(const std::vector<Field> &schema) override;
    /// Throws std::invalid_argument when a decimal does not fit the scale of the schema, a time lies beyond the year 9999 or a
    /// text is no UTF-8, std::length_error when the texts of one column in one block exceed 2 GB.
    void block(const Block &block, std::span<const Dictionary *const> dictionaries) override;
    void end(bool truncated) override;

private:
    struct Messages;
    void addColumn(const Field &field, const Chunk &chunk, std::size_t rows);
    void addDecimals(const Field &field, const Chunk &chunk, std::size_t rows);
    void sendDictionary(std::size_t column, const Dictionary &dictionary);

    std::unique_ptr<Messages> m_messages;
    std::vector<Field> m_schema;
    std::vector<std::size_t> m_sentTexts; ///< of each column's dictionary
    std::vector<bool> m_dictionarySent;
    std::size_t m_rows = 0;
};

/// Hands a whole packet to a sink.
void sendPacket(const Packet &packet, BlockSink &sink);

} // namespace packet
