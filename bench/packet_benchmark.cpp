// Writes a million arrival scans of 22 columns as a stream and reads them back, beside a bare copy of the same bytes: into one
// buffer as the writer does, into fresh memory that is kept as the reader does.

#include "bench/pairs.h"

#include "packet/builder.h"
#include "packet/stream_reader.h"
#include "packet/stream_writer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

using namespace packet;

constexpr int rounds = 9;
constexpr std::size_t rowCount = 1'000'000;
constexpr std::size_t networkPiece = 16 * 1024; ///< as a TLS record brings them

using Message = std::vector<std::byte>;

std::vector<Builder::Column> columns()
{
    std::vector<Builder::Column> all { { "BILL_CODE", ColumnType::Text }, { "SCAN_DATE", ColumnType::Timestamp },
        { "REGISTER_DATE", ColumnType::Timestamp }, { "PIECE", ColumnType::Int64 } };
    for (const char *name : { "WEIGHT", "TRANSFER_OR_DISPATCH_FEE", "OTHER_FEE", "NET_MANAGE_FEE" })
        all.push_back({ name, ColumnType::Decimal, 2 });
    for (const char *name : { "SCAN_TYPE", "SCAN_SITE", "SCAN_MAN", "SCAN_MAN_CODE", "DISPATCH_OR_SEND_MAN", "SEND_SITE",
             "PRE_OR_NEXT_STATION", "DISPATCH_SITE", "CLASS", "GOODS_TYPE", "FAST_TYPE", "CUSTOMER_NAME", "TRUCK_WAY", "REMARK" })
        all.push_back({ name, ColumnType::Text });
    return all;
}

PacketPtr scans()
{
    // How many different texts each text column has behind the first eight columns.
    constexpr std::size_t different[] = { 1, 400, 1500, 1500, 2000, 400, 40, 400, 6, 3, 2, 3000, 60, 1 };
    Builder builder(columns());
    for (std::size_t row = 0; row < rowCount; ++row) {
        builder.addText(0, "77" + std::to_string(10000000000 + row * 7368787 % 1000003 * 37));
        builder.addTimestamp(1, 1709600000 + std::int64_t(row) * 3);
        builder.addTimestamp(2, 1709600040 + std::int64_t(row) * 3);
        builder.addInteger(3, 1 + (row % 20 == 0));
        for (std::size_t column = 4; column < 8; ++column) {
            if (column == 6 && row % 5 != 0)
                builder.addNull(column);
            else
                builder.addDecimal(column, { Int128(row * 7907 % (900 * column)), 2 });
        }
        for (std::size_t text = 0; text < std::size(different); ++text) {
            if (row * 31 % 50 < text * 2)
                builder.addNull(8 + text);
            else
                builder.addText(8 + text, "站点" + std::to_string(row * 7919 % different[text]) + "部");
        }
        builder.endRow();
    }
    return builder.finish();
}

std::vector<Message> messagesOf(const Packet &packet, Compression compression)
{
    std::vector<Message> messages;
    StreamWriter writer(
        [&messages](std::span<const std::byte> message) { messages.emplace_back(message.begin(), message.end()); }, compression);
    sendPacket(packet, writer);
    return messages;
}

PacketPtr read(const std::vector<Message> &messages)
{
    StreamReader reader;
    for (const Message &message : messages) {
        for (std::span<const std::byte> rest = message; !rest.empty(); rest = rest.subspan(std::min(rest.size(), networkPiece)))
            reader.feed(rest.first(std::min(rest.size(), networkPiece)));
    }
    return reader.finish();
}

void compare(const Packet &packet, Compression compression)
{
    const std::vector<Message> messages = messagesOf(packet, compression);
    std::size_t bytes = 0;
    std::size_t largest = 0;
    for (const Message &message : messages) {
        bytes += message.size();
        largest = std::max(largest, message.size());
    }
    Message one(largest);
    std::size_t written = 0;
    PacketPtr result;
    std::vector<Message> copies;
    std::vector<Side> sides {
        { "write",
            [&] {
                StreamWriter writer([&written](std::span<const std::byte> message) { written += message.size(); }, compression);
                sendPacket(packet, writer);
            } },
        { "copy into one buffer",
            [&] {
                for (const Message &message : messages)
                    std::memcpy(one.data(), message.data(), message.size());
            } },
        { "read", [&] { result = read(messages); }, {}, [&] { result = nullptr; } },
        { "copy into fresh memory",
            [&] {
                for (const Message &message : messages)
                    copies.emplace_back(message);
            },
            {}, [&] { copies.clear(); } },
    };
    runInTurn(sides, rounds);
    if (result->rowCount() != rowCount || written != rounds * bytes)
        std::printf("the result is another one\n");
    std::printf("\n%s, %.0f bytes a row on the wire, %.0f in memory, %.0f as built\n",
        compression == Compression::Lz4 ? "with LZ4" : "not compressed", double(bytes) / double(rowCount),
        double(result->memoryBytes()) / double(rowCount), double(packet.memoryBytes()) / double(rowCount));
    for (const Side &side : sides)
        std::printf("%s: median %.1f ms\n", side.name.c_str(), median(side.milliseconds));
    if (compression == Compression::None) {
        printRatio(sides[0], sides[1], 2);
        printRatio(sides[2], sides[3], 2.5); // it passes over the bytes three times: gathered, summed up, brought into blocks
    }
}

} // namespace

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const bool wasQuiet = machineIsQuiet();
    const PacketPtr packet = scans();
    compare(*packet, Compression::None);
    compare(*packet, Compression::Lz4);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
