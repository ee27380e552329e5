#pragma once

#include "packet/wire_format.h"

#include "packet/arrow_generated.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

namespace packet::wire {

/// One message at a time: the columns of its body in their order, then the metadata, which goes in front of them.
class MessageWriter {
public:
    using Output = std::function<void(std::span<const std::byte>)>;

    MessageWriter(Output output, bool lz4)
        : m_output(std::move(output))
        , m_lz4(lz4)
    {
    }

    void addNode(std::size_t rows, std::size_t nulls) { m_nodes.emplace_back(std::int64_t(rows), std::int64_t(nulls)); }
    void addBuffer(const void *data, std::size_t size)
    {
        addBuffer(size, [=](std::byte *place) { std::memcpy(place, data, size); });
    }
    /// `fill` writes the bytes to the place that it is given.
    template <class Fill>
    void addBuffer(std::size_t size, Fill fill)
    {
        if (size == 0)
            return commit(0);
        if (!m_lz4) {
            fill(reserve(size));
            return commit(size);
        }
        m_plain.resize(std::max(m_plain.size(), size));
        fill(m_plain.data());
        compress(std::span(m_plain).first(size));
    }
    void addNoBuffer() { commit(0); }

    /// The batch of the nodes and buffers added so far.
    flatbuffers::Offset<arrow::RecordBatch> batch(flatbuffers::FlatBufferBuilder &builder, std::size_t rows);
    /// Ends the metadata with this header and puts the message out; the next one may begin.
    void send(flatbuffers::FlatBufferBuilder &builder, arrow::MessageHeader type, flatbuffers::Offset<void> header,
        const std::vector<flatbuffers::Offset<arrow::KeyValue>> *keyValues = nullptr);
    /// The end of the stream.
    void finish();
    Checksum &checksum() { return m_checksum; }

private:
    std::byte *reserve(std::size_t size);
    void commit(std::size_t size);
    void compress(std::span<const std::byte> plain);
    void putOut(std::span<const std::byte> bytes);

    Output m_output;
    bool m_lz4;
    Checksum m_checksum {};
    std::vector<arrow::FieldNode> m_nodes {};
    std::vector<arrow::Buffer> m_buffers {};
    std::vector<std::byte> m_bytes {}; ///< room for the metadata, then the body; larger than its use
    std::size_t m_headroom = 0;
    std::size_t m_bodySize = 0;
    std::vector<std::byte> m_plain {}; ///< what is being compressed
};

} // namespace packet::wire
