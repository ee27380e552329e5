// The screens that settle with couriers and departments: city fees, the business department and the destinations.

#include "tests/screens/screen_test.h"

#include <algorithm>

namespace {

qint64 cents(const QString &amount) { return qRound64(amount.toDouble() * 100); }

class CityFee : public ScreenTest {
protected:
    CityFee()
        : ScreenTest(QStringLiteral("frm_BJDispFee"))
    {
    }
    const QString m_summary = QStringLiteral("DataView1");
    const QString m_details = QStringLiteral("DataView2");
};

TEST_F(CityFee, TheBalanceIsPickedUpMinusDeliveredAndEachHalfHasItsDetail)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14" }, { "DBDateTimeEditEh2", u"2026-03-14" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBLookupComboboxEh6", u"" } });
    query();
    const QStringList picked = column(m_summary, QStringLiteral("DISPATCH_FEE1"));
    const QStringList delivered = column(m_summary, QStringLiteral("DISPATCH_FEE2"));
    const QStringList balances = column(m_summary, QStringLiteral("sum"));
    const QStringList counts = column(m_summary, QStringLiteral("BILL_COUNT1"));
    ASSERT_GT(balances.size(), 0);
    for (qsizetype row = 0; row < balances.size(); ++row)
        EXPECT_EQ(cents(picked[row]) + cents(delivered[row]), cents(balances[row])) << "the delivered fee is shown negative";

    expectEveryDetailAddsUp(m_summary, m_details, QStringLiteral("BILL_COUNT1"), { { "DISPATCH_FEE1", "DISPATCH_FEE" } });

    const qsizetype picker = counts.indexOf(*std::max_element(counts.begin(), counts.end()));
    EXPECT_EQ(doubleClick(m_summary, int(picker), QStringLiteral("BILL_COUNT1")).size(), 1);
    EXPECT_EQ(rowCount(m_details), counts[picker].toInt());
    EXPECT_EQ(cents(footer(m_details, QStringLiteral("DISPATCH_FEE"))), cents(picked[picker]));
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(doubleClick(m_summary, int(picker), QStringLiteral("BILL_COUNT2")).size(), 1) << "the other half of the same row";
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(doubleClick(m_summary, int(picker), QStringLiteral("sum")).size(), 1);
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }), QStringList());
}

class SaleQry : public ScreenTest {
protected:
    SaleQry()
        : ScreenTest(QStringLiteral("frm_SaleQry"))
    {
    }
};

TEST_F(SaleQry, EveryDetailAddsUpToItsPerson)
{
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-01 00:00:00"));
    query();
    const QString summary = QStringLiteral("DataView2");
    const QString details = QStringLiteral("DataView1");
    ASSERT_GT(rowCount(summary), 1);
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"), { { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    doubleClick(summary, 0, QStringLiteral("bill_count"));
    doubleClick(details, 0, QStringLiteral("SCAN_SITE"));
    const QStringList opened = happened(QStringLiteral("guest"), { QStringLiteral("connections") });
    EXPECT_EQ(opened.size(), 1);
}

class DestQry : public ScreenTest {
protected:
    DestQry()
        : ScreenTest(QStringLiteral("frm_DestQry"))
    {
    }
    const QString m_summary = QStringLiteral("DataView2");
};

TEST_F(DestQry, TheClassesAddUpToTheTotalAndTheCellChoosesTheClass)
{
    ASSERT_EQ(query().size(), 1);
    const auto counted = [this](const QString &field) { return column(m_summary, field); };
    const QStringList totals = counted(QStringLiteral("sum_bill65"));
    ASSERT_GT(totals.size(), 0);
    const QStringList trucks = counted(QStringLiteral("bill_count64"));
    const QStringList flights = counted(QStringLiteral("bill_count61"));
    const QStringList rails = counted(QStringLiteral("bill_count62"));
    const QStringList others = counted(QStringLiteral("bill_count63"));
    for (qsizetype row = 0; row < totals.size(); ++row)
        EXPECT_EQ(trucks[row].toInt() + flights[row].toInt() + rails[row].toInt() + others[row].toInt(), totals[row].toInt());
    expectEveryDetailAddsUp(m_summary, QStringLiteral("DataView1"), QStringLiteral("sum_bill65"),
        { { "sum_weight65", "WEIGHT" }, { "sum_fee65", "TRANSFER_OR_DISPATCH_FEE" } });
    expectEveryDetailAddsUp(m_summary, QStringLiteral("DataView1"), QStringLiteral("bill_count63"),
        { { "TRANSFER_OR_DISPATCH_FEE63", "TRANSFER_OR_DISPATCH_FEE" } });
    int row = 0;
    while (flights[row].toInt() == 0)
        ++row;
    for (const auto &[field, count] :
        { std::pair("bill_count61", flights[row]), std::pair("sum_bill65", totals[row]), std::pair("sum_bill65", totals[row]) }) {
        EXPECT_EQ(doubleClick(m_summary, row, QString::fromLatin1(field)).size(), 1) << "every visit asks again";
        EXPECT_EQ(rowCount(QStringLiteral("DataView1")), count.toInt());
        page(QStringLiteral("TabSheet1"));
    }
}

TEST_F(DestQry, ByDestinationTheColumnsOfTheStationsAreHidden)
{
    tick(QStringLiteral("RadioButton2"), true);
    query();
    const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), m_summary } })[u"columns"].toArray();
    EXPECT_EQ(std::count_if(columns.begin(), columns.end(), [](const QJsonValue &shown) { return !shown[u"visible"].toBool(); }), 2);
}

TEST(AllScreens, OpenQueryAndCloseWithoutAnErrorThatIsNotTheirOwn)
{
    ClientProcess client;
    for (const char *name : { "ScanContrast", "GuestSignQuery", "AuditingQuery", "MonthSendBill", "MonthRecBill", "RecSendContrast",
             "ManCome", "ManSend", "BillStat", "BJDispFee", "DestQry", "SaleQry", "BillContrastScan", "BillContrastSiteCome",
             "SendNextUnCome", "DispFeeQry1", "ComeDispContrast", "MonthCalc" }) {
        const QString form = u"frm_" + QString::fromLatin1(name);
        EXPECT_EQ(client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString(form + u"111") } })[u"form"].toString(), form);
        if (form != u"frm_BillStat")
            client.obey(QStringLiteral("query"));
        EXPECT_TRUE(client.obey(QStringLiteral("close"))[u"closed"].toBool()) << name;
    }
    EXPECT_EQ(client.events(QStringLiteral("error")).size(), 0);
    EXPECT_EQ(client.quit(), 0);
}

} // namespace
