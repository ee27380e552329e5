#include "tests/dataset/rows.h"

using namespace platform;

namespace {

constexpr auto bills = "BILL_CODE:text,FEE:decimal,AT:time,N:integer\nA,1.50,,1\nB,,2024-03-05 10:00:00,2\nC,2,,3\n";

void setText(TCustomClientDataSet &dataSet, QStringView field, const QString &text)
{
    dataSet.edit();
    dataSet.fieldByName(field)->setAsString(text);
    dataSet.post();
}

TEST(Edit, RowsBuiltOnTheClientBecomePlainDataOnceMerged)
{
    TCustomClientDataSet source;
    source.setReadOnly(true);
    source.setData(packetOf(bills));
    TCustomClientDataSet dataSet;
    dataSet.setData(source.data());
    dataSet.emptyDataSet();
    EXPECT_EQ(dataSet.recordCount(), 0);
    EXPECT_EQ(dataSet.fieldCount(), 4);

    for (const QStringView code : { u" B", u"B", u"B", u"很长的单号一二三四五六七八九十" }) {
        dataSet.append();
        dataSet.fieldByName(u"bill_code")->setAsString(code.toString());
        dataSet.fieldByName(u"n")->setAsString(QStringLiteral("0"));
        dataSet.post();
    }
    EXPECT_EQ(dataSet.changeCount(), 4);
    EXPECT_TRUE(dataSet.locate(QStringLiteral("bill_code"), { QStringLiteral("B") }));
    EXPECT_EQ(dataSet.recordIndex(), 1);
    setText(dataSet, u"at", QStringLiteral("2024-03-05 10:00:00"));
    setText(dataSet, u"fee", QStringLiteral("2.345"));
    setText(dataSet, u"n", QStringLiteral("1.5"));
    EXPECT_EQ(dataSet.changeCount(), 4);
    dataSet.mergeChangeLog();
    EXPECT_EQ(dataSet.changeCount(), 0);

    TCustomClientDataSet copy;
    copy.setData(dataSet.data());
    EXPECT_EQ(shown(copy, u"BILL_CODE"), QStringLiteral(" B|B|B|很长的单号一二三四五六七八九十"));
    EXPECT_EQ(shown(copy, u"FEE"), QStringLiteral("|2.345||"));
    EXPECT_EQ(shown(copy, u"AT"), QStringLiteral("|2024-03-05 10:00:00||"));
    EXPECT_EQ(shown(copy, u"N"), QStringLiteral("0|1.5|0|0"));
    EXPECT_EQ(copy.fieldByName(u"AT")->type(), FieldType::DateTime);
    EXPECT_EQ(source.recordCount(), 3);
}

TEST(Edit, DataIsThePacketItselfUntilSomethingIsPosted)
{
    TCustomClientDataSet dataSet;
    const auto packet = packetOf(bills);
    dataSet.setData(packet);
    dataSet.edit();
    dataSet.field(0)->setAsString(QStringLiteral("Z"));
    EXPECT_EQ(dataSet.text(0, 0), QStringLiteral("Z"));
    EXPECT_EQ(dataSet.data(), packet);
    dataSet.cancel();
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("A|B|C"));
    dataSet.edit();
    dataSet.post();
    EXPECT_EQ(dataSet.changeCount(), 0);
    EXPECT_EQ(dataSet.data(), packet);
}

TEST(Edit, AppendedRowsStandLastAndCancelTakesThemBack)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    dataSet.next();
    dataSet.append();
    EXPECT_EQ(dataSet.state(), DataSetState::Insert);
    EXPECT_EQ(dataSet.recordIndex(), 3);
    EXPECT_TRUE(dataSet.field(0)->isNull());
    dataSet.cancel();
    EXPECT_EQ(dataSet.recordCount(), 3);
    EXPECT_EQ(dataSet.recordIndex(), 1);
    dataSet.append();
    dataSet.field(0)->setAsString(QStringLiteral("D"));
    dataSet.first();
    EXPECT_EQ(dataSet.state(), DataSetState::Browse);
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("A|B|C|D"));
    EXPECT_EQ(dataSet.changeCount(), 1);
}

TEST(Edit, DeletedRowsGoAndOthersKeepTheirBookmarks)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    dataSet.last();
    const auto last = dataSet.bookmark();
    dataSet.first();
    const auto first = dataSet.bookmark();
    dataSet.deleteRow();
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("B|C"));
    EXPECT_FALSE(dataSet.gotoBookmark(first));
    EXPECT_TRUE(dataSet.gotoBookmark(last));
    EXPECT_EQ(dataSet.recordIndex(), 1);
    dataSet.append();
    dataSet.post();
    EXPECT_EQ(dataSet.changeCount(), 2);
    dataSet.deleteRow();
    EXPECT_EQ(dataSet.changeCount(), 1);
    EXPECT_EQ(dataSet.sum(3), (packet::Decimal { 5, 0 }));
    EXPECT_EQ(dataSet.data()->rowCount(), 2U);
    dataSet.deleteRow();
    dataSet.deleteRow();
    EXPECT_TRUE(dataSet.isEmpty() && dataSet.eof());
    EXPECT_NE(errorOf([&] { dataSet.deleteRow(); }), QString());
}

TEST(Edit, WhatDoesNotFitIsRefusedAndTheEditGoesOn)
{
    TCustomClientDataSet dataSet;
    dataSet.setObjectName(QStringLiteral("cds"));
    EXPECT_EQ(errorOf([&] { dataSet.edit(); }), QStringLiteral("数据集“cds”没有打开。"));
    dataSet.setData(packetOf(bills));
    EXPECT_EQ(errorOf([&] { dataSet.field(0)->setAsString(QStringLiteral("x")); }),
        QStringLiteral("数据集“cds”不在编辑状态，不能修改字段“BILL_CODE”。"));
    dataSet.edit();
    EXPECT_EQ(errorOf([&] { dataSet.field(1)->setAsString(QStringLiteral("x")); }),
        QStringLiteral("数据集“cds”的字段“FEE”不能填“x”，这里要填数字。"));
    EXPECT_EQ(errorOf([&] { dataSet.field(2)->setAsString(QStringLiteral("2024-02-30")); }),
        QStringLiteral("数据集“cds”的字段“AT”不能填“2024-02-30”，这里要填日期时间。"));
    EXPECT_EQ(dataSet.state(), DataSetState::Edit);
    dataSet.field(1)->clear();
    dataSet.post();
    EXPECT_TRUE(dataSet.field(1)->isNull());
    dataSet.setReadOnly(true);
    EXPECT_EQ(errorOf([&] { dataSet.append(); }), QStringLiteral("数据集“cds”是只读的，不能修改。"));
}

TEST(Edit, PostedRowsTakeTheirPlaceInFilterAndIndex)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    dataSet.addIndex({ QStringLiteral("byCode"), QStringLiteral("BILL_CODE"), {} });
    dataSet.setIndexName(QStringLiteral("byCode"));
    setText(dataSet, u"BILL_CODE", QStringLiteral("Bb"));
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("B|Bb|C"));
    EXPECT_EQ(dataSet.recordIndex(), 1);
    dataSet.setFilter(QStringLiteral("fee is not null"));
    dataSet.setFiltered(true);
    dataSet.append();
    dataSet.fieldByName(u"BILL_CODE")->setAsString(QStringLiteral("0"));
    dataSet.fieldByName(u"FEE")->setAsString(QStringLiteral("10.001"));
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("Bb|C|0"));
    dataSet.post();
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("0|Bb|C"));
    EXPECT_EQ(dataSet.sum(1), (packet::Decimal { 13501, 3 }));
    setText(dataSet, u"FEE", QString());
    EXPECT_EQ(shown(dataSet, u"BILL_CODE"), QStringLiteral("Bb|C"));
}

} // namespace
