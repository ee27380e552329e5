#include "platform/dataset/data_source.h"
#include "tests/dataset/rows.h"

#include <memory>

using testing::ElementsAre;

namespace {

constexpr auto threeRows = "CODE:text,FEE:decimal\nA,1.50\nB,\nC,2\n";

TEST(Cursor, OpensOnTheFirstRowAndStopsAtBothEnds)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(threeRows));
    EXPECT_EQ(dataSet.recordIndex(), 0);
    EXPECT_TRUE(dataSet.bof());
    EXPECT_FALSE(dataSet.eof());

    EXPECT_EQ(dataSet.moveBy(5), 2);
    EXPECT_EQ(dataSet.recordIndex(), 2);
    EXPECT_TRUE(dataSet.eof());
    EXPECT_FALSE(dataSet.bof());
    dataSet.prior();
    EXPECT_FALSE(dataSet.eof());
    EXPECT_EQ(dataSet.moveBy(-5), -1);
    EXPECT_TRUE(dataSet.bof());
    dataSet.last();
    EXPECT_TRUE(dataSet.eof());
    EXPECT_EQ(dataSet.recordIndex(), 2);
}

TEST(Cursor, WithoutRowsIsBeforeTheFirstAndBehindTheLast)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf("CODE:text\n"));
    EXPECT_EQ(dataSet.recordIndex(), -1);
    EXPECT_TRUE(dataSet.bof() && dataSet.eof());
    dataSet.next();
    dataSet.last();
    EXPECT_TRUE(dataSet.bof() && dataSet.eof());
    EXPECT_TRUE(dataSet.fieldByName(u"code")->isNull());
    EXPECT_EQ(dataSet.fieldByName(u"code")->asString(), QString());
}

TEST(Cursor, FieldsFollowItAndReadAsPeopleDo)
{
    TCustomClientDataSet dataSet;
    dataSet.setObjectName(QStringLiteral("cds"));
    dataSet.setData(packetOf("CODE:text,FEE:decimal,AT:time,N:integer,X:float\nA,1.50,2024-03-05,7,0.25\nB,,,,\n"));
    TField *fee = dataSet.fieldByName(u"fee");
    EXPECT_EQ(fee->asString(), QStringLiteral("1.5"));
    EXPECT_EQ(fee->asDecimal(), (packet::Decimal { 15, 1 }));
    EXPECT_EQ(dataSet.fieldByName(u"At")->asString(), QStringLiteral("2024-03-05 00:00:00"));
    EXPECT_EQ(dataSet.fieldByName(u"X")->asString(), QStringLiteral("0.25"));
    EXPECT_THAT(errorOf([&] { dataSet.fieldByName(u"CODE")->asDecimal(); }), QStringLiteral("数据集“cds”的字段“CODE”的值“A”不是数字。"));
    dataSet.next();
    EXPECT_TRUE(fee->isNull());
    EXPECT_EQ(fee->asString(), QString());
    EXPECT_EQ(fee->asDecimal(), packet::Decimal());
    EXPECT_EQ(errorOf([&] { dataSet.fieldByName(u"NONE"); }), QStringLiteral("数据集“cds”没有字段“NONE”。"));
}

TEST(Cursor, HeldBackSignalsAreSentOnce)
{
    TCustomClientDataSet dataSet;
    std::vector<std::string> heard;
    QObject::connect(&dataSet, &TDataSet::stateChanged, [&] { heard.push_back("state"); });
    QObject::connect(&dataSet, &TDataSet::rowsChanged, [&] { heard.push_back("rows"); });
    QObject::connect(&dataSet, &TDataSet::recordMoved, [&](int row) { heard.push_back("moved " + std::to_string(row)); });
    QObject::connect(&dataSet, &TDataSet::afterOpen, [&] { heard.push_back("open"); });

    dataSet.setData(packetOf(threeRows));
    EXPECT_THAT(heard, ElementsAre("state", "rows", "moved 0", "open"));

    heard.clear();
    dataSet.disableControls();
    dataSet.disableControls();
    dataSet.edit();
    dataSet.field(0)->setAsString(QStringLiteral("Z"));
    dataSet.next();
    dataSet.next();
    dataSet.enableControls();
    EXPECT_TRUE(dataSet.controlsDisabled());
    // Whoever watches the state may have to give the controls back.
    EXPECT_THAT(heard, ElementsAre("state", "state"));
    dataSet.enableControls();
    EXPECT_THAT(heard, ElementsAre("state", "state", "rows", "moved 2"));

    heard.clear();
    dataSet.disableControls();
    dataSet.close();
    dataSet.enableControls();
    EXPECT_THAT(heard, ElementsAre("state", "rows", "moved -1"));
}

TEST(Cursor, ADataSourceOutlivesItsDataSet)
{
    TDataSource source;
    std::vector<std::string> heard;
    QObject::connect(&source, &TDataSource::dataSetChanged, [&] { heard.push_back(source.dataSet() ? "set" : "none"); });
    QObject::connect(&source, &TDataSource::recordMoved, [&] { heard.push_back("moved"); });
    TCustomClientDataSet other;
    other.setData(packetOf(threeRows));
    auto dataSet = std::make_unique<TCustomClientDataSet>();
    source.setDataSet(&other);
    source.setDataSet(dataSet.get());
    other.next();
    dataSet->setData(packetOf(threeRows));
    dataSet.reset();
    EXPECT_THAT(heard, ElementsAre("set", "set", "moved", "none"));
}

} // namespace
