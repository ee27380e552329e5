#include "tests/dataset/rows.h"

#include "platform/dataset/quick_filter.h"
#include "platform/dataset/row_snapshot.h"

using namespace platform;

namespace {

using Keep = QuickFilter::Keep;

constexpr auto table = "CODE:text,SITE:text,FEE:decimal,PIECE:integer,AT:time\n"
                       "007,北京市内,1234.50,1,2026-11-01 08:00:00\n"
                       "008,重庆,0.25,2,\n"
                       "009,,12.30,,2026-11-02 09:30:00\n"
                       "010,上海南浦,,30,2026-11-01 10:00:00\n";

QuickFilter only(const char *field, QStringList texts, Keep keep = Keep::Those)
{
    return { .values = { { QString::fromLatin1(field), std::move(texts), keep } } };
}

QuickFilter typed(const QString &text, QStringList fields = QStringLiteral("CODE SITE FEE PIECE AT").split(u' '))
{
    return { .text = text, .fieldNames = std::move(fields) };
}

/// Rows as they arrive, and the same ones typed in by hand.
class QuickFilters : public testing::TestWithParam<Origin> {
protected:
    QuickFilters() { fill(m_dataSet, table, GetParam()); }
    QString codes(const QuickFilter &filter)
    {
        m_dataSet.setQuickFilter(filter);
        return shown(m_dataSet, u"CODE");
    }

    TCustomClientDataSet m_dataSet;
};

TEST_P(QuickFilters, KeepRowsByWhatTheirCellsShow)
{
    const struct {
        QuickFilter filter;
        const char *codes;
    } cases[] = {
        { only("SITE", { QStringLiteral("重庆") }), "008" },
        { only("SITE", { QStringLiteral("重庆") }, Keep::Others), "007|009|010" },
        { only("site", { {}, QStringLiteral("上海南浦") }), "009|010" },
        { only("SITE", { QString() }, Keep::Others), "007|008|010" },
        { only("FEE", { QStringLiteral("12.3") }), "009" },
        { only("CODE", { QStringLiteral("7") }), "" },
        { only("CODE", {}), "" },
        { only("CODE", {}, Keep::Others), "007|008|009|010" },
        { only("NOWHERE", { QStringLiteral("7") }), "007|008|009|010" },
        { typed(QStringLiteral("重")), "008" },
        { typed(QStringLiteral("cq")), "008" },
        { typed(QStringLiteral("zhongq")), "008" },
        { typed(QStringLiteral("NanP")), "010" },
        { typed(QStringLiteral("snei")), "007" },
        { typed(QStringLiteral("2026-11-01")), "007|010" },
        { typed(QStringLiteral("30")), "009|010" }, // in 09:30:00 and as a number
        { typed(QStringLiteral("1,234.50")), "007" },
        { typed(QStringLiteral("12.30")), "009" },
        { typed(QStringLiteral("30.0")), "010" },
        { typed(QStringLiteral("0"), { QStringLiteral("PIECE") }), "010" },
        { typed(QStringLiteral("%")), "" },
        { typed(QStringLiteral(",")), "" },
        { typed(QStringLiteral("30.") + QString(100'000, u'0')), "" },
        { typed(QStringLiteral("0"), {}), "" },
        { { .values = { { QStringLiteral("SITE"), { QStringLiteral("重庆") }, Keep::Others },
                { QStringLiteral("PIECE"), { QString() }, Keep::Others } },
              .text = QStringLiteral("0"),
              .fieldNames = { QStringLiteral("CODE") } },
            "007|010" },
        { {}, "007|008|009|010" },
    };
    for (const auto &test : cases)
        EXPECT_EQ(codes(test.filter), QString::fromLatin1(test.codes)) << "case " << &test - cases;
}

TEST_P(QuickFilters, StandOnTheDatasetsOwnFilterAndOrder)
{
    m_dataSet.setFilter(QStringLiteral("CODE > '007'"));
    m_dataSet.setFiltered(true);
    m_dataSet.addIndex({ QStringLiteral("down"), QStringLiteral("CODE"), QStringLiteral("CODE") });
    m_dataSet.setIndexName(QStringLiteral("down"));
    ASSERT_TRUE(m_dataSet.locate(QStringLiteral("CODE"), { QStringLiteral("009") }));
    const int fee = m_dataSet.fieldByName(u"FEE")->index();

    EXPECT_EQ(codes(only("SITE", { QStringLiteral("上海南浦") }, Keep::Others)), u"009|008");
    EXPECT_EQ(m_dataSet.recordIndex(), 0);
    EXPECT_EQ(m_dataSet.unnarrowedCount(), 3);
    EXPECT_EQ(m_dataSet.filterNotice(), QStringLiteral("已筛选：3 行中的 2 行"));
    EXPECT_EQ(QString::fromStdString(m_dataSet.sum(fee).toString()), u"12.55");
    EXPECT_EQ(m_dataSet.snapshot().rowCount(), 2);

    m_dataSet.setIndexName({});
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"008|009");
    m_dataSet.setFilter(QStringLiteral("CODE > '008'"));
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"009");
    m_dataSet.setFiltered(false);
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"007|008|009");
    EXPECT_EQ(codes({}), u"007|008|009|010");
    EXPECT_EQ(m_dataSet.fieldByName(u"CODE")->asString(), u"009");
    EXPECT_EQ(m_dataSet.filterNotice(), u"");
}

TEST_P(QuickFilters, FollowEditsAndGiveAllRowsBack)
{
    m_dataSet.setQuickFilter(only("SITE", { QStringLiteral("重庆") }, Keep::Others));
    m_dataSet.edit();
    m_dataSet.fieldByName(u"SITE")->setAsString(QStringLiteral("重庆"));
    m_dataSet.post();
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"009|010");
    m_dataSet.append();
    m_dataSet.fieldByName(u"CODE")->setAsString(QStringLiteral("011"));
    m_dataSet.post();
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"009|010|011");
    m_dataSet.append();
    m_dataSet.cancel();
    m_dataSet.first();
    m_dataSet.deleteRow();
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"010|011");
    EXPECT_EQ(m_dataSet.unnarrowedCount(), 4);
    EXPECT_EQ(codes({}), u"007|008|010|011");
}

TEST_P(QuickFilters, EndWithTheRows)
{
    m_dataSet.setQuickFilter(only("SITE", { QStringLiteral("重庆") }));
    m_dataSet.setData(packetOf(table));
    EXPECT_EQ(shown(m_dataSet, u"CODE"), u"007|008|009|010");
    m_dataSet.setQuickFilter(only("SITE", { QStringLiteral("重庆") }));
    m_dataSet.emptyDataSet();
    EXPECT_EQ(m_dataSet.filterNotice(), u"");
    m_dataSet.close();
    EXPECT_THROW(m_dataSet.setQuickFilter({}), DataSetError);
}

TEST_P(QuickFilters, CountTheValuesThatAnotherFilterWouldLeave)
{
    m_dataSet.setQuickFilter(only("CODE", { QStringLiteral("007") }));
    QStringList counts;
    for (const auto &[text, rows] : m_dataSet.valueCounts(1, only("CODE", { QStringLiteral("010") }, Keep::Others), 10))
        counts.append(text + u'=' + QString::number(rows));
    counts.sort();
    EXPECT_EQ(counts.join(u' '), QStringLiteral("=1 北京市内=1 重庆=1"));
    EXPECT_EQ(m_dataSet.valueCounts(1, {}, 2).size(), 2U);
}

TEST(QuickFilterOverBlocks, ReadsDictionariesAndPlainTexts)
{
    constexpr int rows = 20'000;
    std::string many = "CODE:text,SITE:text\n";
    for (int row = 0; row < rows; ++row)
        many += std::to_string(row) + (row % 3 == 0 ? ",\n" : row % 3 == 1 ? ",重庆\n" : ",北京\n");
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(many));
    ASSERT_TRUE(dataSet.data()->dictionary(1));
    ASSERT_FALSE(dataSet.data()->dictionary(0));

    dataSet.setQuickFilter(typed(QStringLiteral("cq")));
    EXPECT_EQ(dataSet.recordCount(), (rows + 1) / 3);
    EXPECT_EQ(dataSet.text(0, dataSet.recordCount() - 1), u"19999");
    dataSet.setQuickFilter(only("SITE", { QStringLiteral("重庆"), QString() }));
    EXPECT_EQ(dataSet.recordCount(), rows - rows / 3);
    dataSet.setQuickFilter(typed(QStringLiteral("1999")));
    EXPECT_EQ(shown(dataSet, u"CODE"), u"1999|11999|19990|19991|19992|19993|19994|19995|19996|19997|19998|19999");
}

INSTANTIATE_TEST_SUITE_P(Origins, QuickFilters, testing::Values(Origin::Packet, Origin::Appended));

} // namespace
