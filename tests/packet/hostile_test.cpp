#include "allocations.h"
#include "support.h"
#include "wire_support.h"

#include "packet/builder.h"
#include "packet/stream_reader.h"
#include "packet/utf8.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace packet;
using namespace packet::test;
using testing::HasSubstr;

constexpr std::size_t blockRows = Packet::blockRows;

struct Pair {
    std::int64_t first;
    std::int64_t second;
};

PacketPtr sites() { return columnOf(ColumnType::Text, { "北京", "上海", "北京", "上海", "北京", "null" }); }

TEST(HostileStream, ContentsAreChecked)
{
    // Messages: 0 schema, 1 dictionary or block, 2 block; buffers stand at multiples of 64.
    const auto changed = [](const PacketPtr &packet, auto change) {
        Messages messages(*packet);
        EXPECT_EQ(refusal(messages.sealed()), "");
        change(messages);
        return refusal(messages.sealed());
    };
    EXPECT_THAT(changed(sites(), [](Messages &stream) { stream.setInBody<std::uint32_t>(2, 64, 2); }), HasSubstr("字典"));
    EXPECT_THAT(changed(sites(), [](Messages &stream) { stream.setInBody<std::uint32_t>(2, 64, 0xFFFFFFFF); }), HasSubstr("字典"));
    EXPECT_NE(changed(sites(), [](Messages &stream) { stream.setInBody<std::uint8_t>(2, 0, 0x0F); }), "") << "another count of nulls";

    const PacketPtr plain = columnOf(ColumnType::Text, { "一", "b", "c" });
    for (const auto &[position, value] : std::vector<std::pair<std::size_t, std::uint32_t>> {
             { 0, 1 }, { 4, 5 }, { 4, 0xFFFFFFF0 }, { 8, 2 }, { 12, 4 }, { 12, 6 }, { 12, 0x7FFFFFFF }, { 12, 0xFFFFFFFF } })
        EXPECT_NE(changed(plain, [=](Messages &stream) { stream.setInBody(1, position, value); }), "") << position << ' ' << value;
    EXPECT_THAT(changed(plain, [](Messages &stream) { stream.setInBody<std::uint32_t>(1, 4, 2); }), HasSubstr("UTF-8"));
    EXPECT_THAT(changed(plain, [](Messages &stream) { stream.setInBody<std::uint8_t>(1, 64, 0xFF); }), HasSubstr("UTF-8"));
    EXPECT_THAT(changed(sites(), [](Messages &stream) { stream.setInBody<std::uint8_t>(1, 64, 0x80); }), HasSubstr("UTF-8"));

    const PacketPtr number = columnOf(ColumnType::Decimal, { "1.5" });
    EXPECT_NE(changed(number, [](Messages &stream) { stream.setInBody<std::int64_t>(1, 8, 0x4B3B4CA85A86C47B); }), "") << "39 digits";
    EXPECT_NE(
        changed(number, [](Messages &stream) { stream.setInBody<std::int64_t>(1, 8, std::numeric_limits<std::int64_t>::min()); }), "");
    const PacketPtr time = columnOf(ColumnType::Timestamp, { "2024-02-29" });
    EXPECT_THAT(changed(time, [](Messages &stream) { stream.setInBody<std::int64_t>(1, 0, 253402300800); }), HasSubstr("时间"));
    EXPECT_THAT(
        changed(time, [](Messages &stream) { stream.setInBody(1, 0, std::numeric_limits<std::int64_t>::min()); }), HasSubstr("时间"));
}

TEST(HostileStream, SizesInTheMetadataAreChecked)
{
    const PacketPtr packet = columnOf(ColumnType::Int64, { "1", "null", "3" });
    // The nodes and buffers of its block: 3 rows with 1 null; bitmap at 0, 1 byte; values at 64, 24 bytes.
    const Pair node { 3, 1 };
    const Pair bitmap { 0, 1 };
    const Pair values { 64, 24 };
    const auto changed = [&](const Pair &from, const Pair &to) {
        Messages messages(*packet);
        messages.replaceInMetadata(1, from, to);
        return refusal(messages.sealed());
    };
    EXPECT_EQ(changed(node, node), "");
    constexpr std::int64_t huge = std::numeric_limits<std::int64_t>::max();
    for (const Pair &to : { Pair { 4, 1 }, Pair { 3, -1 }, Pair { 3, 4 }, Pair { 3, 0 }, Pair { huge, 1 }, Pair { -3, 1 } })
        EXPECT_NE(changed(node, to), "") << to.first << ' ' << to.second;
    for (const Pair &to : { Pair { 0, 2 }, Pair { 0, 0 }, Pair { -64, 1 }, Pair { 1, 1 } })
        EXPECT_NE(changed(bitmap, to), "") << to.first << ' ' << to.second;
    for (const Pair &to : { Pair { 0, 24 }, Pair { 64, 32 }, Pair { 64, 16 }, Pair { 128, 24 }, Pair { 64, huge }, Pair { huge & ~63, 24 },
             Pair { -64, 24 }, Pair { 64, -24 }, Pair { 72, 24 } })
        EXPECT_NE(changed(values, to), "") << to.first << ' ' << to.second;
}

TEST(HostileStream, OrderAndNumberOfMessagesAreChecked)
{
    Builder builder({ { "SITE", ColumnType::Text } });
    for (std::size_t row = 0; row < 2 * blockRows + 5; ++row) {
        builder.addText(0, "site " + std::to_string(row % 10));
        builder.endRow();
    }
    const Messages messages(*builder.finish()); // 0 schema, 1 dictionary, 2-4 blocks, 5 end mark, 6 end
    const auto reordered = [&messages](const std::vector<std::size_t> &order) {
        Messages other = messages;
        other.parts.clear();
        for (const std::size_t message : order)
            other.parts.push_back(messages.parts[message]);
        return refusal(other.sealed());
    };
    EXPECT_EQ(reordered({ 0, 1, 2, 3, 4, 5, 6 }), "");
    const std::vector<std::vector<std::size_t>> wrong { { 1, 0, 2, 3, 4, 5, 6 }, { 0, 2, 3, 4, 5, 6 }, { 0, 2, 1, 3, 4, 5, 6 },
        { 0, 0, 1, 2, 3, 4, 5, 6 }, { 0, 1, 1, 2, 3, 4, 5, 6 }, { 0, 1, 2, 4, 3, 5, 6 }, { 0, 1, 2, 3, 5, 6 }, { 0, 1, 2, 3, 4, 4, 5, 6 },
        { 5, 6 } };
    for (const auto &order : wrong)
        EXPECT_NE(reordered(order), "") << testing::PrintToString(order);
    const auto appended = [&messages](std::size_t message) {
        Bytes bytes = messages.bytes();
        bytes.resize(bytes.size() - messages.parts[6].size());
        bytes.insert(bytes.end(), messages.parts[message].begin(), messages.parts[message].end());
        bytes.insert(bytes.end(), messages.parts[6].begin(), messages.parts[6].end());
        return refusal(bytes);
    };
    for (const std::size_t message : { 0, 1, 4, 5 })
        EXPECT_NE(appended(message), "") << message;
}

TEST(HostileStream, OnlyTheTypesOfAPacketAreRead)
{
    const auto renamed = [](const PacketPtr &packet, std::string_view from, std::string_view to) {
        Messages messages(*packet);
        messages.replaceText(0, from, to);
        return refusal(messages.sealed());
    };
    Builder builder({ { "AA", ColumnType::Int64 }, { "BB", ColumnType::Int64 } });
    const PacketPtr pair = builder.finish();
    EXPECT_EQ(renamed(pair, "BB", "AB"), "");
    EXPECT_THAT(renamed(pair, "BB", "aA"), HasSubstr("两次"));
    EXPECT_THAT(renamed(pair, "BB", "\xC3("), HasSubstr("UTF-8"));
    EXPECT_THAT(refusal(Messages(*Builder({ { std::string(70000, 'x'), ColumnType::Int64 } }).finish()).bytes()), HasSubstr("列名"));
    EXPECT_THAT(renamed(pair, "kelvara.packet", "kelvara.parcel"), HasSubstr("格式或版本"));
    const auto retyped = [](ColumnType type, auto from, auto to) {
        Messages messages(*columnOf(type, {}));
        messages.replaceInMetadata(0, from, to);
        return refusal(messages.sealed());
    };
    EXPECT_NE(retyped(ColumnType::Int64, 64, 32), "") << "a narrower integer";
    EXPECT_NE(retyped(ColumnType::Decimal, 38, 39), "") << "a longer decimal";
}

TEST(HostileStream, ClaimsCostNoMemory)
{
    const Messages sound(*columnOf(ColumnType::Int64, { "1", "null", "3" }));
    const auto allocatedFor = [](const Bytes &bytes) {
        StreamReader reader;
        forgetAllocations();
        try {
            reader.feed(bytes);
        } catch (const StreamError &) {
            // Refused or still waiting for the rest: both are right.
        }
        EXPECT_THROW(reader.finish(), StreamError);
        return largestAllocation();
    };
    const std::size_t some = 64 * 1024;
    for (const std::uint32_t size : { 0x0FFFFFF8u, 0x7FFFFFF8u, 0xFFFFFFF8u }) {
        Bytes bytes(16, std::byte(0xFF));
        std::memcpy(bytes.data() + 4, &size, sizeof size);
        EXPECT_LT(allocatedFor(bytes), some) << size;
    }
    for (const std::int64_t size : { std::int64_t(200'000'000), std::int64_t(1) << 40, std::int64_t(-128) }) {
        Messages messages = sound;
        messages.replaceInMetadata(1, std::int64_t(128), size); // the size of the body
        EXPECT_LT(allocatedFor(messages.sealed()), some) << size;
    }
    // Texts that LZ4 is said to make many of.
    Messages compressed(*columnOf(ColumnType::Text, { std::string(5000, 'x') }), Compression::Lz4);
    EXPECT_EQ(refusal(compressed.sealed()), "");
    compressed.setInBody<std::int32_t>(1, 12, 0x7FFFFFFF); // the second offset
    compressed.setInBody<std::int64_t>(1, 64, 0x7FFFFFFF); // the true length
    EXPECT_LT(allocatedFor(compressed.sealed()), some);
    compressed.setInBody<std::int32_t>(1, 12, 4000);
    compressed.setInBody<std::int64_t>(1, 64, 4000);
    EXPECT_THAT(refusal(compressed.sealed()), HasSubstr("压缩"));
}

TEST(HostileStream, LimitsHold)
{
    const Bytes bytes = Messages(*columnOf(ColumnType::Text, { std::string(100'000, 'x') }), Compression::Lz4).bytes();
    const auto accepted = [&bytes](const StreamLimits &limits) {
        StreamReader reader(limits);
        try {
            reader.feed(bytes);
            return reader.finish()->rowCount() == 1;
        } catch (const StreamError &) {
            return false;
        }
    };
    EXPECT_TRUE(accepted({}));
    EXPECT_FALSE(accepted({ .messageBytes = 512 }));
    EXPECT_FALSE(accepted({ .totalBytes = 1500 }));
    EXPECT_FALSE(accepted({ .totalBytes = 50'000 })) << "what LZ4 makes counts";
    EXPECT_FALSE(accepted({ .columns = 0 }));
}

TEST(HostileStream, Utf8IsReadStrictly)
{
    for (const char *valid :
        { "", "abcdefgh", "abcdefgé", "北京", "a北b京c", "😀", "\xF4\x8F\xBF\xBF", "\xED\x9F\xBF", "12345678北京市内部12345678" })
        EXPECT_TRUE(isUtf8(valid)) << valid;
    for (const char *invalid : { "\x80", "abcdefgh\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
             "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "北\xE4\xBA", "\xE4", "\xF0\x9F\x98", "1234567\xFF", "\xE4\xBA\x41" })
        EXPECT_FALSE(isUtf8(invalid)) << invalid;
}

} // namespace
