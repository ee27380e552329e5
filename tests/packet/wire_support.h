#pragma once

#include "packet/builder.h"
#include "packet/stream_writer.h"

#include <functional>
#include <string>
#include <vector>

namespace packet::test {

using Bytes = std::vector<std::byte>;

/// The messages of a stream, to be changed one by one: schema, dictionaries and blocks, end mark, end of stream.
class Messages {
public:
    explicit Messages(const Packet &packet, Compression compression = Compression::None);

    /// The stream of the messages as they are now, with the checksum that belongs to them: whoever wrote it meant it.
    Bytes sealed() const;
    /// The stream as it is, checksum and all.
    Bytes bytes() const;
    /// The number at this place of a message's body.
    template <class T>
    void setInBody(std::size_t message, std::size_t position, T value)
    {
        put(message, bodyStart(message) + position, &value, sizeof value);
    }
    /// Replaces these bytes, which stand somewhere in the message's metadata. Fails the test unless they are there.
    template <class T>
    void replaceInMetadata(std::size_t message, const T &from, const T &to)
    {
        put(message, find(message, &from, sizeof from), &to, sizeof to);
    }
    void replaceText(std::size_t message, std::string_view from, std::string_view to)
    {
        put(message, find(message, from.data(), from.size()), to.data(), to.size());
    }

    std::vector<Bytes> parts {};

private:
    std::size_t bodyStart(std::size_t message) const;
    std::size_t find(std::size_t message, const void *bytes, std::size_t size) const;
    void put(std::size_t message, std::size_t position, const void *bytes, std::size_t size);

    std::string m_rows;
    std::string m_truncated;
    std::string m_checksum;
};

/// Columns of every type; rows for them with nulls, and in the second block with a decimal that needs 128 bits.
std::vector<Builder::Column> everyColumn();
void addEveryType(Builder &builder, std::size_t rows);
PacketPtr everyType(std::size_t rows, Extent extent = Extent::Whole);
/// The stream that is written while `fill` adds rows.
Bytes streamed(
    const std::vector<Builder::Column> &columns, const std::function<void(Builder &)> &fill, Compression compression = Compression::None);
/// A packet of one column that holds these values; "null" stands for null.
PacketPtr columnOf(ColumnType type, const std::vector<std::string> &values);
/// Feeds the bytes in pieces of this size; all at once with 0.
PacketPtr readStream(std::span<const std::byte> bytes, std::size_t piece = 0);
/// Empty when the stream is read, otherwise what is wrong with it.
std::string refusal(std::span<const std::byte> bytes);

} // namespace packet::test
