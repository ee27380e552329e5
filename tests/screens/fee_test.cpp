// The screens that count volumes and compare fees: monthly volumes, dispatch fees and audited transfer fees.

#include "tests/screens/screen_test.h"

namespace {

const QString yesterday = QStringLiteral(" between to_date('2026-03-14 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                         "to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss')");

class MonthCalc : public ScreenTest {
protected:
    MonthCalc()
        : ScreenTest(QStringLiteral("frm_MonthCalc"), { QStringLiteral("--login-site"), QStringLiteral("广东中心") })
    {
    }
};

TEST_F(MonthCalc, CountsTheHandOversOfOneFinanceCentre)
{
    query();
    EXPECT_EQ(footer(QStringLiteral("DataView2"), QStringLiteral("bill_count")),
        answerOf(u"select count(*) from tab_account_list where pre_finance_center='广东中心' and create_date" + yesterday));
    m_client.set(QStringLiteral("DBLookupComboboxEh4"), QStringLiteral("香港"));
    query();
    EXPECT_LE(rowCount(QStringLiteral("DataView2")), 1);
    EXPECT_FALSE(
        m_client
            .ask({ { QStringLiteral("do"), QStringLiteral("page") }, { QStringLiteral("control"), QStringLiteral("TabSheet2") } })[u"ok"]
            .toBool())
        << "the detail has no tab";
}

class DispFee : public ScreenTest {
protected:
    explicit DispFee(const QString &site = QStringLiteral("北京"))
        : ScreenTest(QStringLiteral("frm_DispFeeQry1"), { QStringLiteral("--login-site"), site })
    {
    }
    const QString m_summary = QStringLiteral("DataView1");
    const QString m_details = QStringLiteral("DataView2");
};

TEST_F(DispFee, TheClickedCellChoosesWhatTheDetailShowsAndItAddsUp)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14" }, { "DBDateTimeEditEh2", u"2026-03-14" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBComboBoxEh4", u"全部" } });
    query();
    ASSERT_EQ(rowCount(m_summary), 1);
    const auto count = [this](const QString &field) { return column(m_summary, field).value(0).toInt(); };
    doubleClick(m_summary, 0, QStringLiteral("BILL_COUNT"));
    EXPECT_EQ(rowCount(m_details), count(QStringLiteral("BILL_COUNT")));
    EXPECT_EQ(
        footer(m_details, QStringLiteral("DISPATCH_FEE")).toDouble(), column(m_summary, QStringLiteral("DISPATCH_FEE"))[0].toDouble());
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(doubleClick(m_summary, 0, QStringLiteral("BILL_COUNT1")).size(), 1) << "another column of the same row";
    EXPECT_EQ(rowCount(m_details), count(QStringLiteral("BILL_COUNT1")));
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(page(QStringLiteral("TabSheet2")), QStringList());
}

TEST_F(DispFee, ByProvinceTheResultIsFilteredAndTheFilterStaysOnForTheOtherMode)
{
    tick(QStringLiteral("CheckBox1"), false);
    query();
    const int all = rowCount(m_summary);
    m_client.set(QStringLiteral("DBComboBoxEh4"), QStringLiteral("外省"));
    query();
    const QStringList types = column(m_summary, QStringLiteral("type"));
    EXPECT_TRUE(types.size() < all && !types.isEmpty() && types.count(QStringLiteral("外省")) == types.size());
    tick(QStringLiteral("CheckBox1"), true);
    query();
    EXPECT_EQ(rowCount(m_summary), 0) << "its rows have no type, and the filter is still on";
}

TEST_F(DispFee, ARefusedSiteLeavesTheRowsShown)
{
    query();
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("上海静安"));
    EXPECT_EQ(query(), QStringList());
    EXPECT_EQ(rowCount(m_summary), 1);
}

class AuditingQuery : public ScreenTest {
protected:
    AuditingQuery()
        : ScreenTest(QStringLiteral("frm_AuditingQuery"))
    {
    }
};

TEST_F(AuditingQuery, ComparesFeesByStationAndTheDetailAddsUpToTheCent)
{
    query();
    const QString summary = QStringLiteral("DataView2");
    const QString details = QStringLiteral("DataView1");
    ASSERT_GT(rowCount(summary), 1);
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"), { { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    m_client.set(QStringLiteral("DBLookupComboboxEh3"), QString());
    EXPECT_EQ(m_client.textOf(QStringLiteral("DBLookupComboboxEh3")), QStringLiteral("北京"));
}

TEST_F(AuditingQuery, AListedWaybillHasItsDetail)
{
    const QString bill = answerOf(QStringLiteral("select min(bill_code) from tab_scan_come where scan_site='北京'"));
    tick(QStringLiteral("InputList1.CheckBox1"), true);
    list({ bill });
    query();
    EXPECT_EQ(page(QStringLiteral("TabSheet2")).size(), 1);
    EXPECT_GT(rowCount(QStringLiteral("DataView1")), 0);
}

} // namespace
