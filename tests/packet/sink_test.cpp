#include "support.h"

#include "packet/builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace packet;
using namespace packet::test;
using testing::ElementsAre;

constexpr std::size_t blockRows = Packet::blockRows;

Builder::Column column(const char *name, std::optional<ColumnType> type = {}) { return { name, type }; }

/// Fills both kinds of builder with the same rows: `add` gets a builder and a row number.
template <class Add>
PacketPtr streamed(Recorder &sink, const std::vector<Builder::Column> &columns, std::size_t rows, Add add)
{
    Builder kept(columns);
    Builder passing(columns, &sink);
    for (std::size_t row = 0; row < rows; ++row) {
        add(kept, row);
        kept.endRow();
        sink.rowsSent = row + 1;
        add(passing, row);
        passing.endRow();
    }
    EXPECT_EQ(passing.rowCount(), rows);
    EXPECT_EQ(passing.finish(Extent::Truncated), nullptr);
    return kept.finish();
}

TEST(Sink, GetsTheRowsThatThePacketWouldHold)
{
    Recorder sink;
    const PacketPtr packet
        = streamed(sink, { column("SITE", ColumnType::Text), column("BILL", ColumnType::Text), column("FEE", ColumnType::Decimal) },
            2 * blockRows + 5, [](Builder &builder, std::size_t row) {
                builder.addText(0, row % 9 == 0 ? "" : "site " + std::to_string(row % 300 + row / blockRows));
                builder.addText(1, "bill " + std::to_string(row));
                builder.addDecimal(2, { Int128(row), 2 });
            });
    EXPECT_EQ(sink.rows, cells(*packet));
    EXPECT_TRUE(sink.schema[0].dictionary);
    EXPECT_FALSE(sink.schema[1].dictionary);
    EXPECT_TRUE(sink.ended);
    EXPECT_TRUE(sink.truncated);
    // A block goes as soon as it is full.
    EXPECT_THAT(sink.rowsAtBlock, ElementsAre(blockRows, 2 * blockRows, 2 * blockRows + 5));
}

TEST(Sink, WaitsForTheTypesOfComputedColumns)
{
    Recorder sink;
    const PacketPtr packet
        = streamed(sink, { column("WHOLE"), column("LATE"), column("NEVER") }, 20 * blockRows, [](Builder &builder, std::size_t row) {
              if (row < 18 * blockRows)
                  builder.addInteger(0, std::int64_t(row));
              else
                  builder.addDecimal(0, { 3333333, 7 });
              if (row < 2 * blockRows)
                  builder.addNull(1);
              else
                  builder.addTimestamp(1, std::int64_t(row));
              if (row < 17 * blockRows)
                  builder.addNull(2);
              else
                  builder.addInteger(2, 7);
          });
    EXPECT_EQ(sink.rows, cells(*packet));
    EXPECT_EQ(sink.schema[0].type, ColumnType::Decimal);
    EXPECT_GE(sink.schema[0].scale, 7);
    EXPECT_EQ(sink.schema[1].type, ColumnType::Timestamp);
    EXPECT_EQ(sink.schema[2].type, ColumnType::Text);
    EXPECT_EQ(sink.rowsAtBlock.front(), Builder::heldBlocks * blockRows);
}

TEST(Sink, KnowsTheTypesOfAShortResultExactly)
{
    Recorder sink;
    streamed(sink, { column("COUNT"), column("FEE"), column("NOTHING") }, 3, [](Builder &builder, std::size_t row) {
        builder.addInteger(0, std::int64_t(row));
        builder.addDecimal(1, { 125, 2 });
        builder.addNull(2);
    });
    EXPECT_EQ(sink.schema[0].type, ColumnType::Int64);
    EXPECT_EQ(sink.schema[1].scale, 2);
    EXPECT_EQ(sink.schema[2].type, ColumnType::Text);

    Recorder empty;
    EXPECT_EQ(Builder({ column("X") }, &empty).finish(), nullptr);
    EXPECT_TRUE(empty.begun && empty.ended && !empty.truncated);
    EXPECT_EQ(empty.schema.at(0).name, "X");
}

TEST(Sink, LeavesRoomForLongNumbersAndLongFractions)
{
    const auto scaleOf = [](const Builder::Column &declared, const char *first) {
        Recorder sink;
        streamed(sink, { declared }, blockRows + 1, [first](Builder &builder, std::size_t) { builder.addText(0, first); });
        return sink.schema[0].scale;
    };
    EXPECT_GE(scaleOf({ "MONEY", ColumnType::Decimal, 2 }, "1.5"), 6);
    EXPECT_LE(scaleOf({ "MONEY", ColumnType::Decimal, 2 }, "1.5"), 9); // within 64 bits for any sum of money
    EXPECT_GE(scaleOf(column("SHARE", ColumnType::Decimal), "1"), 15);
    EXPECT_EQ(scaleOf(column("LONG", ColumnType::Decimal), "123456789012345678901234567890"), 8);
    EXPECT_EQ(scaleOf({ "DEEP", ColumnType::Decimal, 2 }, "1e-20"), 20);
}

TEST(Sink, ThatFailsEndsTheReading)
{
    struct : Recorder {
        void block(const Block &, std::span<const Dictionary *const>) override { throw std::runtime_error("gone"); }
    } sink;
    Builder builder({ column("N", ColumnType::Int64) }, &sink);
    builder.addInteger(0, 1);
    builder.endRow();
    EXPECT_THROW(builder.finish(), std::runtime_error);
    EXPECT_FALSE(sink.ended);
}

} // namespace
