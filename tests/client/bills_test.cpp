#include "client/bills/answered_bills.h"
#include "client/bills/bill_count.h"

#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/exception.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

using namespace client;

namespace {

const BillPattern pattern(QStringLiteral("^([0-9]{8}|[0-9]{12})$"));

TEST(Bills, AreCountedAsAPersonReadsThem)
{
    const QStringList lines { QStringLiteral("12345678"), QStringLiteral(" 12345678 "), QString(), QStringLiteral("1.2E+11"),
        QStringLiteral("单号"), QStringLiteral("单号"), QStringLiteral("123456789012") };
    const BillCount count = countBills(lines, pattern);
    EXPECT_EQ(count.text(), QStringLiteral("2 个单号，1 个重复，3 行不像单号"));
    EXPECT_EQ(count.numbers, QStringList({ QStringLiteral("12345678"), QStringLiteral("123456789012") }));
    EXPECT_EQ(count.oddLines, QList<int>({ 3, 4, 5 }));
    EXPECT_EQ(count.shortened, QStringList(QStringLiteral("1.2E+11")));
    EXPECT_EQ(countBills({ QString() }, pattern).text(), QString());
    for (const char *shortened : { "1.2E+11", "2E+11", "2.68207610001E11", "1e+12" })
        EXPECT_TRUE(BillPattern::isShortened(QString::fromLatin1(shortened))) << shortened;
    for (const char *other : { "1.2", "E+11", "12E+11", "1.2E+11X" })
        EXPECT_FALSE(BillPattern::isShortened(QString::fromLatin1(other))) << other;
}

TEST(Bills, APatternThatCannotBeUsedIsReplacedAndAHugeLineCostsNothing)
{
    EXPECT_TRUE(BillPattern(QStringLiteral("([")).fits(QStringLiteral("AB-123")));
    EXPECT_FALSE(BillPattern(QString()).fits(QStringLiteral("单号123456")));
    EXPECT_FALSE(pattern.fits(QString(10'000'000, u'1'))) << "no pattern is tried on it";
}

class Answer : public testing::Test {
protected:
    /// Rows of a number, a mark and a place; "" is null.
    static packet::PacketPtr rows(const std::vector<std::array<const char *, 3>> &cells, packet::Extent extent = packet::Extent::Whole)
    {
        packet::Builder builder({ { .name = "BILL_CODE" }, { .name = "bl_sign", .type = packet::ColumnType::Int64 }, { .name = "PLACE" } });
        for (const auto &row : cells) {
            for (std::size_t column = 0; column < row.size(); ++column)
                builder.addText(column, row[column]);
            builder.endRow();
        }
        return builder.finish(extent);
    }
    UnansweredBills unanswered(packet::PacketPtr answer)
    {
        m_rows.setData(std::move(answer));
        return unansweredBills({ QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3") }, m_rows);
    }

    TClientDataSetEx m_rows;
};

TEST_F(Answer, TellsWhichNumbersItSaysNothingOf)
{
    const UnansweredBills found = unanswered(rows({ { " 1", "1", "" }, { "2", "0", " " }, { "9", "", "x" } }));
    EXPECT_EQ(found.unknown, QStringList(QStringLiteral("2")));
    EXPECT_EQ(found.missing, QStringList(QStringLiteral("3")));
    const UnansweredBills cut = unanswered(rows({ { "1", "1", "" } }, packet::Extent::Truncated));
    EXPECT_TRUE(cut.unknown.isEmpty() && cut.missing.isEmpty()) << "nobody knows what the rest says";
}

TEST_F(Answer, PartsAreJoinedWithAllTheirRowsAndTypes)
{
    const packet::PacketPtr joined
        = joinedRows({ rows({ { "1", "1", "" } }), rows({ { "2", "", "北京" }, { "3", "0", "上海" } }, packet::Extent::Truncated) });
    ASSERT_EQ(joined->rowCount(), 3U);
    EXPECT_EQ(joined->text(2, 1), "北京") << "of a column that the first part had no text for";
    EXPECT_EQ(joined->integer(1, 0), 1);
    EXPECT_TRUE(joined->isNull(1, 1));
    EXPECT_TRUE(joined->truncated());
    packet::Builder other({ { .name = "OTHER" } });
    EXPECT_THROW(joinedRows({ rows({}), other.finish() }), Exception);
}

} // namespace
