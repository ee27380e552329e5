#include "packet/builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace packet;
using testing::HasSubstr;

constexpr std::size_t blockRows = Packet::blockRows;

std::string cell(const PacketPtr &packet, std::size_t column, std::size_t row)
{
    std::string text;
    packet->appendText(column, row, text);
    return packet->isNull(column, row) ? "null" : text;
}

Builder::Column column(const char *name, std::optional<ColumnType> type = {}) { return { name, type }; }

TEST(Builder, ReadsBackEveryKindAcrossBlocks)
{
    Builder builder({ column("T", ColumnType::Text), column("I", ColumnType::Int64), column("D", ColumnType::Decimal),
        column("F", ColumnType::Float64), column("S", ColumnType::Timestamp) });
    const std::size_t rows = blockRows + 3;
    for (std::size_t row = 0; row < rows; ++row) {
        if (row % 5 == 4) {
            for (std::size_t position = 0; position < 5; ++position)
                builder.addNull(position);
        } else {
            builder.addText(0, "北京" + std::to_string(row % 7));
            builder.addInteger(1, std::int64_t(row));
            builder.addDouble(2, double(row) / 4);
            builder.addDouble(3, double(row) / 3);
            builder.addText(4, row % 2 ? "2024-02-29 23:59:58" : "2024-03-01");
        }
        builder.endRow();
    }
    const PacketPtr packet = builder.finish(Extent::Truncated);
    ASSERT_EQ(packet->rowCount(), rows);
    ASSERT_EQ(packet->blocks().size(), 2u);
    EXPECT_TRUE(packet->truncated());
    EXPECT_EQ(packet->schema()[2].scale, 2);
    const std::size_t last = blockRows + 1; // 8193
    EXPECT_EQ(cell(packet, 0, last), "北京3");
    EXPECT_EQ(cell(packet, 1, last), "8193");
    EXPECT_EQ(cell(packet, 2, last), "2048.25");
    EXPECT_EQ(packet->real(3, last), 2731.0);
    EXPECT_EQ(cell(packet, 4, last), "2024-02-29 23:59:58");
    for (std::size_t position = 0; position < 5; ++position)
        EXPECT_EQ(cell(packet, position, blockRows + 2), "null");
    EXPECT_EQ(packet->text(0, 4), "");
    EXPECT_EQ(packet->decimal(2, 4), Decimal {});
}

TEST(Builder, OnlyRepeatingTextsGetADictionary)
{
    Builder builder({ column("SITE"), column("BILL"), column("LATE") });
    for (std::size_t row = 0; row < 2 * blockRows; ++row) {
        builder.addText(0, "site " + std::to_string(row % 300));
        if (row % 3 == 0)
            builder.addNull(1);
        else
            builder.addText(1, "bill " + std::to_string(row));
        if (row < blockRows)
            builder.addNull(2);
        else
            builder.addText(2, "unique " + std::to_string(row));
        builder.endRow();
    }
    const PacketPtr packet = builder.finish();
    EXPECT_TRUE(packet->schema()[0].dictionary);
    EXPECT_EQ(packet->dictionary(0)->size(), 300u);
    EXPECT_EQ(packet->chunk(0, 0).width, 2);
    EXPECT_FALSE(packet->schema()[1].dictionary);
    EXPECT_EQ(packet->dictionary(1), nullptr);
    EXPECT_FALSE(packet->schema()[2].dictionary);
    for (const std::size_t row : { std::size_t(1), std::size_t(2000), blockRows - 1, blockRows + 4 }) {
        EXPECT_EQ(cell(packet, 0, row), "site " + std::to_string(row % 300));
        EXPECT_EQ(cell(packet, 1, row), row % 3 == 0 ? "null" : "bill " + std::to_string(row));
        EXPECT_EQ(cell(packet, 2, row), row < blockRows ? "null" : "unique " + std::to_string(row));
    }
    // Under a null there is no stray text.
    const auto *offsets = packet->chunk(1, 0).offsets.as<std::uint32_t>();
    EXPECT_EQ(offsets[0], offsets[1]);
}

TEST(Builder, DictionaryTellsTextsOfEveryLengthApart)
{
    std::vector<std::string> texts;
    for (std::size_t size = 1; size <= 40; ++size) {
        for (std::size_t changed = 0; changed < size; ++changed) {
            texts.emplace_back(size, 'a');
            texts.back()[changed] = 'b';
        }
    }
    Builder builder({ column("T") });
    for (int round = 0; round < 4; ++round) {
        for (const std::string &text : texts) {
            builder.addText(0, text);
            builder.endRow();
        }
    }
    const PacketPtr packet = builder.finish();
    ASSERT_TRUE(packet->schema()[0].dictionary);
    EXPECT_EQ(packet->dictionary(0)->size(), texts.size());
    for (std::size_t row = 0; row < packet->rowCount(); ++row)
        ASSERT_EQ(packet->text(0, row), texts[row % texts.size()]);
}

TEST(Builder, IndexesWidenWithTheDictionary)
{
    Builder builder({ column("T") });
    // Three rows of four repeat at first, then every text is new.
    for (std::size_t row = 0; row < 11 * blockRows; ++row) {
        builder.addText(0, std::to_string(row < blockRows ? row / 4 : row));
        builder.endRow();
    }
    const PacketPtr packet = builder.finish();
    ASSERT_TRUE(packet->schema()[0].dictionary);
    EXPECT_EQ(packet->chunk(0, 0).width, 2);
    EXPECT_EQ(packet->chunk(0, 10 * blockRows).width, 4);
    EXPECT_EQ(cell(packet, 0, 10 * blockRows + 7), std::to_string(10 * blockRows + 7));
}

TEST(Builder, UndeclaredColumnsTakeTheTypeThatArrives)
{
    Builder builder({ column("MIXED"), column("WHOLE"), column("LATER"), column("NEVER"), column("TIME") });
    builder.addInteger(0, 5);
    builder.addInteger(1, 7);
    builder.addNull(2);
    builder.addNull(3);
    builder.addTimestamp(4, 0);
    builder.endRow();
    builder.addText(0, "x");
    builder.addNull(1);
    builder.addNull(2);
    builder.addNull(3);
    builder.addNull(4);
    builder.endRow();
    for (std::size_t row = 2; row < blockRows + 1; ++row) {
        builder.addText(0, "");
        builder.addInteger(1, 8);
        builder.addNull(2);
        builder.addNull(3);
        builder.addNull(4);
        builder.endRow();
    }
    builder.addInteger(0, 6);
    builder.addDecimal(1, { 125, 2 });
    builder.addDecimal(2, { 3, 1 });
    builder.addNull(3);
    builder.addNull(4);
    builder.endRow();
    const PacketPtr packet = builder.finish();
    const ColumnType types[] = { ColumnType::Text, ColumnType::Decimal, ColumnType::Decimal, ColumnType::Text, ColumnType::Timestamp };
    for (std::size_t position = 0; position < 5; ++position)
        EXPECT_EQ(packet->schema()[position].type, types[position]) << position;
    EXPECT_EQ(cell(packet, 0, 0), "5");
    EXPECT_EQ(cell(packet, 0, 1), "x");
    EXPECT_EQ(cell(packet, 0, 2), "null");
    EXPECT_EQ(cell(packet, 0, blockRows + 1), "6");
    EXPECT_EQ(cell(packet, 1, 0), "7");
    EXPECT_EQ(cell(packet, 1, blockRows + 1), "1.25");
    EXPECT_EQ(cell(packet, 2, 0), "null");
    EXPECT_EQ(cell(packet, 2, blockRows + 1), "0.3");
    EXPECT_EQ(cell(packet, 3, blockRows + 1), "null");
    EXPECT_EQ(cell(packet, 4, 0), "1970-01-01 00:00:00");
}

TEST(Builder, UndeclaredColumnsBecomeTextLate)
{
    for (const std::size_t late : { std::size_t(1023), std::size_t(1024), std::size_t(5000), std::size_t(blockRows) - 1 }) {
        Builder builder({ column("NULLS"), column("NUMBERS") });
        for (std::size_t row = 0; row < blockRows + std::size_t(2000); ++row) {
            if (row < late) {
                builder.addNull(0);
                builder.addInteger(1, std::int64_t(row));
            } else {
                builder.addText(0, "late " + std::to_string(row));
                builder.addText(1, "x" + std::to_string(row % 7));
            }
            builder.endRow();
        }
        const PacketPtr packet = builder.finish();
        EXPECT_EQ(cell(packet, 0, late - 1), "null");
        EXPECT_EQ(cell(packet, 0, late), "late " + std::to_string(late));
        EXPECT_EQ(cell(packet, 0, blockRows + 1999), "late " + std::to_string(blockRows + 1999));
        EXPECT_EQ(cell(packet, 1, late - 1), std::to_string(late - 1));
        EXPECT_EQ(cell(packet, 1, blockRows - 1), "x" + std::to_string((blockRows - 1) % 7));
        EXPECT_EQ(cell(packet, 1, blockRows), "x" + std::to_string(blockRows % 7));
    }
}

TEST(Builder, DecimalsKeepEveryDigitAtTheSmallestScale)
{
    Builder builder({ column("D", ColumnType::Decimal) });
    const char *const values[] = { "0.5", "12345678901234567890", "-3.0625", "1e-5" };
    for (const char *value : values) {
        builder.addText(0, value);
        builder.endRow();
    }
    builder.addDouble(0, 1234.5678);
    builder.endRow();
    for (std::size_t row = 5; row < blockRows; ++row) {
        builder.addInteger(0, 1);
        builder.endRow();
    }
    builder.addDouble(0, 20.50);
    builder.endRow();
    const PacketPtr packet = builder.finish();
    const char *const expected[] = { "0.5", "12345678901234567890", "-3.0625", "0.00001", "1234.5678" };
    for (std::size_t row = 0; row < std::size(expected); ++row)
        EXPECT_EQ(cell(packet, 0, row), expected[row]);
    EXPECT_EQ(packet->chunk(0, 0).width, 16);
    EXPECT_EQ(packet->chunk(0, 0).scale, 5);
    EXPECT_EQ(packet->chunk(0, blockRows).width, 8);
    EXPECT_EQ(packet->chunk(0, blockRows).scale, 1);
    EXPECT_EQ(packet->schema()[0].scale, 5);
}

TEST(Builder, NamesTheColumnAndTheValueThatDoNotFit)
{
    const auto refusal = [](ColumnType type, auto add) {
        Builder builder({ column("WEIGHT", type) });
        try {
            add(builder);
        } catch (const std::invalid_argument &error) {
            return std::string(error.what());
        }
        return std::string("accepted");
    };
    EXPECT_THAT(refusal(ColumnType::Decimal, [](Builder &builder) { builder.addText(0, "三斤"); }),
        testing::AllOf(HasSubstr("WEIGHT"), HasSubstr("三斤"), HasSubstr("数字")));
    EXPECT_THAT(refusal(ColumnType::Int64, [](Builder &builder) { builder.addDouble(0, 1.5); }), HasSubstr("1.5"));
    EXPECT_THAT(refusal(ColumnType::Timestamp, [](Builder &builder) { builder.addText(0, "2024-02-30"); }), HasSubstr("2024-02-30"));
    EXPECT_EQ(refusal(ColumnType::Int64, [](Builder &builder) { builder.addText(0, " 12.0 "); }), "accepted");
}

TEST(Builder, RepeatedNamesAreNumbered)
{
    const PacketPtr packet = Builder({ column("X"), column("x"), column("X_1"), column("X") }).finish();
    std::vector<std::string> names;
    for (const Field &field : packet->schema())
        names.push_back(field.name);
    EXPECT_THAT(names, testing::ElementsAre("X", "x_1", "X_1_1", "X_2"));
    EXPECT_EQ(packet->indexOf("x_2"), 3);
    EXPECT_EQ(packet->indexOf("Y"), -1);
    EXPECT_EQ(packet->rowCount(), 0u);
}

} // namespace
