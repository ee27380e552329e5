#include "packet/message_writer.h"

namespace packet::wire {

std::byte *MessageWriter::reserve(std::size_t size)
{
    const std::size_t end = m_headroom + m_bodySize + aligned(size, bufferAlignment);
    if (end > m_bytes.size())
        m_bytes.resize(std::max(end, m_bytes.size() * 2));
    return m_bytes.data() + m_headroom + m_bodySize;
}

/// The bytes that were written to the reserved place are a buffer.
void MessageWriter::commit(std::size_t size)
{
    m_buffers.emplace_back(std::int64_t(m_bodySize), std::int64_t(size));
    const std::size_t filled = aligned(size, bufferAlignment);
    if (size > 0)
        std::memset(m_bytes.data() + m_headroom + m_bodySize + size, 0, filled - size);
    m_bodySize += filled;
}

void MessageWriter::compress(std::span<const std::byte> plain)
{
    std::byte *const place = reserve(sizeof(std::int64_t) + std::max(frameBound(plain.size()), plain.size()));
    std::int64_t trueSize = std::int64_t(plain.size());
    std::size_t size = compressFrame(plain, place + sizeof trueSize);
    if (size >= plain.size()) {
        std::memcpy(place + sizeof trueSize, plain.data(), plain.size());
        size = plain.size();
        trueSize = notCompressed;
    }
    std::memcpy(place, &trueSize, sizeof trueSize);
    commit(sizeof trueSize + size);
}

flatbuffers::Offset<arrow::RecordBatch> MessageWriter::batch(flatbuffers::FlatBufferBuilder &builder, std::size_t rows)
{
    const auto nodes = builder.CreateVectorOfStructs(m_nodes);
    const auto buffers = builder.CreateVectorOfStructs(m_buffers);
    const auto compression = m_lz4 ? arrow::CreateBodyCompression(builder) : flatbuffers::Offset<arrow::BodyCompression>();
    return arrow::CreateRecordBatch(builder, std::int64_t(rows), nodes, buffers, compression);
}

void MessageWriter::send(flatbuffers::FlatBufferBuilder &builder, arrow::MessageHeader type, flatbuffers::Offset<void> header,
    const std::vector<flatbuffers::Offset<arrow::KeyValue>> *keyValues)
{
    builder.Finish(arrow::CreateMessageDirect(builder, arrow::MetadataVersion::V5, type, header, std::int64_t(m_bodySize), keyValues));
    const std::size_t size = aligned(builder.GetSize(), messageAlignment);
    const std::size_t front = prefixBytes + size;
    if (front > m_headroom) {
        m_bytes.insert(m_bytes.begin(), front - m_headroom, std::byte(0));
        m_headroom = front;
    }
    std::byte *const begin = m_bytes.data() + m_headroom - front;
    const std::uint32_t prefix[] = { continuation, std::uint32_t(size) };
    std::memcpy(begin, prefix, sizeof prefix);
    std::memcpy(begin + prefixBytes, builder.GetBufferPointer(), builder.GetSize());
    std::memset(begin + prefixBytes + builder.GetSize(), 0, size - builder.GetSize());
    putOut({ begin, front + m_bodySize });
    builder.Clear();
    m_nodes.clear();
    m_buffers.clear();
    m_bodySize = 0;
}

void MessageWriter::finish()
{
    const std::uint32_t end[] = { continuation, 0 };
    putOut(std::as_bytes(std::span(end)));
}

void MessageWriter::putOut(std::span<const std::byte> bytes)
{
    m_checksum.add(bytes);
    m_output(bytes);
}

} // namespace packet::wire
