#include "wire_support.h"

#include "packet/stream_reader.h"
#include "packet/wire_format.h"

#include <algorithm>
#include <cstring>

namespace packet::test {

Messages::Messages(const Packet &packet, Compression compression)
    : m_rows(std::to_string(packet.rowCount()))
    , m_truncated(packet.truncated() ? "1" : "0")
{
    StreamWriter writer([this](std::span<const std::byte> message) { parts.emplace_back(message.begin(), message.end()); }, compression);
    sendPacket(packet, writer);
    wire::Checksum checksum;
    for (std::size_t message = 0; message + 2 < parts.size(); ++message)
        checksum.add(parts[message]);
    m_checksum = checksum.text(m_rows, m_truncated);
}

Bytes Messages::sealed() const
{
    wire::Checksum checksum;
    for (std::size_t message = 0; message + 2 < parts.size(); ++message)
        checksum.add(parts[message]);
    Messages copy = *this;
    copy.replaceText(parts.size() - 2, m_checksum, checksum.text(m_rows, m_truncated));
    return copy.bytes();
}

Bytes Messages::bytes() const
{
    Bytes all;
    for (const Bytes &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

std::size_t Messages::bodyStart(std::size_t message) const
{
    std::uint32_t size = 0;
    std::memcpy(&size, parts.at(message).data() + sizeof size, sizeof size);
    return wire::prefixBytes + size;
}

std::size_t Messages::find(std::size_t message, const void *bytes, std::size_t size) const
{
    const auto *wanted = static_cast<const std::byte *>(bytes);
    const auto end = parts.at(message).begin() + std::ptrdiff_t(bodyStart(message));
    const auto found = std::search(parts[message].begin(), end, wanted, wanted + size);
    if (found == end)
        throw std::logic_error("the message does not have these bytes");
    return std::size_t(found - parts[message].begin());
}

void Messages::put(std::size_t message, std::size_t position, const void *bytes, std::size_t size)
{
    if (position + size > parts.at(message).size())
        throw std::logic_error("the message is shorter");
    std::memcpy(parts[message].data() + position, bytes, size);
}

std::vector<Builder::Column> everyColumn()
{
    return { { "运单", ColumnType::Text }, { "SITE", ColumnType::Text }, { "PIECE", ColumnType::Int64 }, { "FEE", ColumnType::Decimal, 4 },
        { "RATE", ColumnType::Float64 }, { "SCAN_DATE", ColumnType::Timestamp }, { "NOTHING", ColumnType::Text } };
}

void addEveryType(Builder &builder, std::size_t rows)
{
    for (std::size_t row = 0; row < rows; ++row) {
        builder.addText(0, row % 11 == 3 ? "" : "单 77100" + std::to_string(row * 7919) + "😀");
        builder.addText(1, row % 7 == 6 ? "" : "站点" + std::to_string(row % 50 + row / Packet::blockRows * 40) + "部");
        builder.addInteger(2, std::int64_t(row) - 5);
        if (row % 13 == 5)
            builder.addNull(3);
        else if (row == Packet::blockRows + 1)
            builder.addText(3, "-123456789012345678901234567890.12345678");
        else
            builder.addDecimal(3, { Int128(row) * 3 - 100, 2 });
        builder.addDouble(4, double(row) / 3);
        builder.addTimestamp(5, std::int64_t(row) * 86399 - 1000000);
        builder.addNull(6);
        builder.endRow();
    }
}

PacketPtr everyType(std::size_t rows, Extent extent)
{
    Builder builder(everyColumn());
    addEveryType(builder, rows);
    return builder.finish(extent);
}

Bytes streamed(const std::vector<Builder::Column> &columns, const std::function<void(Builder &)> &fill, Compression compression)
{
    Bytes bytes;
    StreamWriter writer(
        [&bytes](std::span<const std::byte> message) { bytes.insert(bytes.end(), message.begin(), message.end()); }, compression);
    Builder builder(columns, &writer);
    fill(builder);
    builder.finish();
    return bytes;
}

PacketPtr columnOf(ColumnType type, const std::vector<std::string> &values)
{
    Builder builder({ { "C", type } });
    for (const std::string &value : values) {
        if (value == "null")
            builder.addNull(0);
        else
            builder.addText(0, value);
        builder.endRow();
    }
    return builder.finish();
}

PacketPtr readStream(std::span<const std::byte> bytes, std::size_t piece)
{
    StreamReader reader;
    while (!bytes.empty()) {
        const auto part = bytes.first(piece == 0 ? bytes.size() : std::min(piece, bytes.size()));
        const std::vector<std::byte> copy(part.begin(), part.end()); // so that a read beyond it is found
        reader.feed(copy);
        bytes = bytes.subspan(part.size());
    }
    return reader.finish();
}

std::string refusal(std::span<const std::byte> bytes)
{
    try {
        readStream(bytes);
        return {};
    } catch (const StreamError &error) {
        return error.what();
    }
}

} // namespace packet::test
