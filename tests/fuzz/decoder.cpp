// Feeds a stream to the reader: as it is, and once more with an end mark that belongs to it, so that what the reader takes for
// a sound result is looked at cell by cell.

#include "packet/stream_reader.h"
#include "packet/stream_writer.h"
#include "packet/wire_format.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using namespace packet;

constexpr StreamLimits limits { .messageBytes = 4 * 1024 * 1024, .totalBytes = 32 * 1024 * 1024, .columns = 100 };

void readEveryCell(const Packet &packet)
{
    std::string text;
    for (std::size_t column = 0; column < packet.columnCount(); ++column) {
        for (std::size_t row = 0; row < packet.rowCount(); ++row)
            packet.appendText(column, row, text);
        text.clear();
    }
}

/// The last two messages of a result of that many rows, with the checksum of other bytes.
std::vector<std::byte> endOf(std::size_t rows, wire::Checksum &checksum)
{
    std::vector<Block> blocks;
    for (std::size_t left = rows; left > 0; left -= blocks.back().rows)
        blocks.push_back({ std::uint32_t(std::min<std::size_t>(left, Packet::blockRows)), {} });
    std::vector<std::vector<std::byte>> messages;
    StreamWriter writer([&messages](std::span<const std::byte> message) { messages.emplace_back(message.begin(), message.end()); });
    sendPacket(Packet({}, blocks, {}, false), writer);
    wire::Checksum own;
    for (std::size_t message = 0; message + 2 < messages.size(); ++message)
        own.add(messages[message]);
    const std::string replaced = own.text(std::to_string(rows), "0");
    const std::string wanted = checksum.text(std::to_string(rows), "0");
    std::vector<std::byte> end = messages[messages.size() - 2];
    const auto bytes = std::as_bytes(std::span(replaced));
    const auto place = std::search(end.begin(), end.end(), bytes.begin(), bytes.end());
    if (place == end.end())
        std::abort();
    std::memcpy(&*place, wanted.data(), wanted.size());
    end.insert(end.end(), messages.back().begin(), messages.back().end());
    return end;
}

enum class End { Own, Fitting };

/// False when the bytes are refused before any end.
bool read(std::span<const std::byte> bytes, End end)
{
    bool isFed = false;
    try {
        StreamReader reader(limits);
        reader.feed(bytes);
        isFed = true;
        if (end == End::Fitting) {
            wire::Checksum checksum;
            checksum.add(bytes);
            reader.feed(endOf(reader.rows(), checksum));
        }
        readEveryCell(*reader.finish());
    } catch (const StreamError &) {
        // Most inputs are refused.
    }
    return isFed;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::span bytes(reinterpret_cast<const std::byte *>(data), size);
    if (read(bytes, End::Own))
        read(bytes, End::Fitting);
    return 0;
}
