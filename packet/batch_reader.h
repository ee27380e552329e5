#pragma once

#include "packet/packet.h"

#include "packet/arrow_generated.h"

namespace packet::wire {

/// Takes the columns out of the body of one batch: each node and each buffer once, in their order. Throws StreamError.
class BatchReader {
public:
    /// `decompressed` counts what LZ4 makes, which must not exceed `limit`.
    BatchReader(const arrow::RecordBatch &batch, std::span<const std::byte> body, std::uint64_t limit, std::uint64_t &decompressed);

    Chunk column(const Field &field, const Dictionary *dictionary);
    /// The texts of a dictionary batch.
    void appendTo(Dictionary &dictionary);
    /// To be called when every column has been taken.
    void finish() const;

private:
    std::size_t nextNode();
    Buffer validity(std::size_t nulls);
    std::span<const std::byte> nextBuffer(std::size_t size);
    std::span<const std::byte> decompress(std::span<const std::byte> bytes, std::size_t size);
    template <class T>
    std::span<const T> nextArray(std::size_t count);
    std::span<const std::uint32_t> nextOffsets();
    std::string_view nextTexts(std::span<const std::uint32_t> offsets);
    void readTexts(Chunk &chunk);
    void readIndexes(Chunk &chunk, std::size_t dictionarySize, bool anyText);
    void readDecimals(Chunk &chunk, int scale);
    void readWideDecimals(Chunk &chunk, std::span<const std::byte> bytes, int scale);
    void readWords(Chunk &chunk, ColumnType type);

    const arrow::RecordBatch &m_batch;
    std::span<const std::byte> m_body;
    std::uint64_t m_limit;
    std::uint64_t &m_decompressed;
    std::size_t m_rows = 0;
    flatbuffers::uoffset_t m_nodes = 0; ///< taken
    flatbuffers::uoffset_t m_buffers = 0; ///< taken
    std::uint64_t m_bodyUsed = 0;
    std::vector<std::byte> m_plain {}; ///< the buffer that was decompressed last
};

} // namespace packet::wire
