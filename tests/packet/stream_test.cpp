#include "support.h"
#include "wire_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace packet;
using namespace packet::test;
using testing::HasSubstr;

constexpr std::size_t blockRows = Packet::blockRows;

void expectSame(const Packet &read, const Packet &written)
{
    ASSERT_EQ(read.columnCount(), written.columnCount());
    for (std::size_t column = 0; column < read.columnCount(); ++column) {
        EXPECT_EQ(read.schema()[column].name, written.schema()[column].name);
        EXPECT_EQ(read.schema()[column].type, written.schema()[column].type);
        EXPECT_EQ(read.schema()[column].dictionary, written.schema()[column].dictionary);
        EXPECT_EQ(read.schema()[column].scale, written.schema()[column].scale);
    }
    EXPECT_EQ(read.truncated(), written.truncated());
    EXPECT_EQ(cells(read), cells(written));
}

TEST(Stream, ReadsBackWhatWasWritten)
{
    for (const std::size_t rows : { std::size_t(0), std::size_t(1), std::size_t(100), blockRows, 3 * blockRows + 17 }) {
        const PacketPtr written = everyType(rows, rows == 100 ? Extent::Truncated : Extent::Whole);
        for (const Compression compression : { Compression::None, Compression::Lz4 }) {
            SCOPED_TRACE(std::to_string(rows) + (compression == Compression::Lz4 ? " compressed" : ""));
            const Messages messages(*written, compression);
            const Bytes bytes = messages.bytes();
            EXPECT_EQ(messages.sealed(), bytes);
            expectSame(*readStream(bytes), *written);
            for (const std::size_t piece : { std::size_t(1), std::size_t(13), std::size_t(65536) }) {
                if (piece > 1 || rows <= 100)
                    expectSame(*readStream(bytes, piece), *written);
            }
        }
    }
}

TEST(Stream, KeepsBlocksAsSmallAsTheBuilderDoes)
{
    const PacketPtr written = everyType(2 * blockRows);
    const PacketPtr read = readStream(Messages(*written).bytes());
    EXPECT_EQ(read->chunk(1, 0).width, 2); // indexes
    EXPECT_EQ(read->chunk(3, 0).width, 8); // decimals
    EXPECT_EQ(read->chunk(3, blockRows).width, 16);
    EXPECT_LE(read->memoryBytes(), written->memoryBytes() + written->memoryBytes() / 10);
}

TEST(Stream, GrowsWithItsDictionaries)
{
    const std::size_t rows = 11 * blockRows + 9;
    const auto text = [](std::size_t row) { return std::to_string(row < blockRows ? row / 4 : row); };
    for (const Compression compression : { Compression::None, Compression::Lz4 }) {
        const auto fill = [&](Builder &builder) {
            for (std::size_t row = 0; row < rows; ++row) {
                builder.addText(0, text(row));
                builder.endRow();
            }
        };
        const PacketPtr read = readStream(streamed({ { "T", ColumnType::Text } }, fill, compression), 1000);
        ASSERT_EQ(read->rowCount(), rows);
        ASSERT_TRUE(read->schema()[0].dictionary);
        EXPECT_EQ(read->chunk(0, 0).width, 2);
        EXPECT_EQ(read->chunk(0, 10 * blockRows).width, 4);
        for (std::size_t row = 0; row < rows; ++row)
            ASSERT_EQ(read->text(0, row), text(row));
    }
}

TEST(Stream, BringsDecimalsToOneScaleOrRefuses)
{
    const auto readWith = [](const char *later) {
        return readStream(streamed({ { "FEE", ColumnType::Decimal, 2 } }, [later](Builder &builder) {
            for (std::size_t row = 0; row <= blockRows; ++row) {
                builder.addText(0, row < blockRows ? "1.25" : later);
                builder.endRow();
            }
        }));
    };
    const PacketPtr read = readWith("12345678901234567890.125");
    EXPECT_EQ(cell(*read, 0, 5), "1.25");
    EXPECT_EQ(cell(*read, 0, blockRows), "12345678901234567890.125");
    for (const char *unfit : { "1e-9", "1234567890123456789012345678901234567" }) {
        try {
            readWith(unfit);
            ADD_FAILURE() << unfit;
        } catch (const std::invalid_argument &error) {
            EXPECT_THAT(error.what(), HasSubstr("FEE"));
        }
    }
}

TEST(Stream, BringsComputedNumbersBackTo64Bits)
{
    // They arrive at a scale that leaves room for anything.
    const char *const values[] = { "0", "-25", "8192.25", "92233720368547758.07", "-0.0625", "1e-9" };
    const PacketPtr read = readStream(streamed({ { "SHARE", std::nullopt } }, [&values](Builder &builder) {
        for (std::size_t row = 0; row < 3 * blockRows; ++row) {
            const bool isSpecial = row % 1000 == 999;
            const auto value = Decimal::parse(values[isSpecial ? row / blockRows + 3 : row % 3]);
            builder.addDecimal(0, *value);
            builder.endRow();
        }
    }));
    for (std::size_t row = 0; row < read->rowCount(); ++row)
        ASSERT_EQ(read->decimal(0, row), *Decimal::parse(values[row % 1000 == 999 ? row / blockRows + 3 : row % 3])) << row;
    const std::pair<int, int> widthsAndScales[] = { { 8, 2 }, { 8, 4 }, { 8, 9 } };
    for (std::size_t block = 0; block < 3; ++block) {
        EXPECT_EQ(read->blocks()[block].columns[0].width, widthsAndScales[block].first);
        EXPECT_EQ(read->blocks()[block].columns[0].scale, widthsAndScales[block].second);
    }
    // Without zeros to take off they stay as they are.
    const PacketPtr wide = readStream(streamed({ { "D", ColumnType::Decimal } }, [](Builder &builder) {
        for (const char *value : { "1234567890123456789.5", "1", "-1234567890123456789012345678901234.5678" }) {
            builder.addText(0, value);
            builder.endRow();
        }
    }));
    EXPECT_EQ(wide->chunk(0, 0).width, 16);
    EXPECT_EQ(cell(*wide, 0, 2), "-1234567890123456789012345678901234.5678");
}

TEST(Stream, IsNotWrittenWithValuesThatNobodyReads)
{
    const auto year10000 = [](Builder &builder) {
        builder.addTimestamp(0, 253402300800);
        builder.endRow();
    };
    EXPECT_THROW(streamed({ { "SCAN_DATE", ColumnType::Timestamp } }, year10000), std::invalid_argument);
    for (const std::size_t rows : { 1, 4 }) { // plain, then with a dictionary
        const auto otherEncoding = [rows](Builder &builder) {
            for (std::size_t row = 0; row < rows; ++row) {
                builder.addText(0, "\xB1\xB1\xBE\xA9");
                builder.endRow();
            }
        };
        EXPECT_THROW(streamed({ { "SITE", ColumnType::Text } }, otherEncoding), std::invalid_argument);
    }
}

TEST(Stream, RefusesEveryPartOfIt)
{
    for (const Compression compression : { Compression::None, Compression::Lz4 }) {
        const Bytes bytes = Messages(*everyType(20), compression).bytes();
        for (std::size_t size = 0; size < bytes.size(); ++size)
            ASSERT_THAT(refusal(std::span(bytes).first(size)), HasSubstr("重新查询")) << size;
        Bytes longer = bytes;
        longer.push_back(std::byte(0xFF));
        EXPECT_THAT(refusal(longer), HasSubstr("多余"));
    }
}

TEST(Stream, NeverShowsAnythingElseWhenAByteIsWrong)
{
    for (const Compression compression : { Compression::None, Compression::Lz4 }) {
        const PacketPtr written = everyType(20);
        Bytes bytes = Messages(*written, compression).bytes();
        std::size_t harmless = 0;
        for (std::size_t position = 0; position < bytes.size(); ++position) {
            for (const std::byte change : { std::byte(0x01), std::byte(0x80), std::byte(0xFF) }) {
                bytes[position] ^= change;
                if (refusal(bytes).empty()) {
                    ++harmless;
                    expectSame(*readStream(bytes), *written);
                    ASSERT_FALSE(testing::Test::HasFailure()) << position;
                }
                bytes[position] ^= change;
            }
        }
        // Only what nobody reads of the end mark may change.
        EXPECT_LT(harmless, 2000u);
    }
}

TEST(Stream, OfTheDescriptionIsRead)
{
    std::ifstream file(KELVARA_SOURCE_DIR "/tests/packet/example.arrows", std::ios::binary);
    const std::string bytes { std::istreambuf_iterator<char>(file), {} };
    const PacketPtr packet = readStream(std::as_bytes(std::span(bytes)));
    const std::vector<std::vector<std::string>> expected { { "771000001", "北京", "2.5" }, { "771000002", "北京", "null" },
        { "771000003", "null", "-0.05" } };
    EXPECT_EQ(cells(*packet), expected);
    EXPECT_TRUE(packet->schema()[1].dictionary);
    EXPECT_FALSE(packet->truncated());
}

} // namespace
