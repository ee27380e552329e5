// The two screens that compare entered waybills with scans.

#include "tests/screens/screen_test.h"

namespace {

class BillContrastScan : public ScreenTest {
protected:
    BillContrastScan()
        : ScreenTest(QStringLiteral("frm_BillContrastScan"))
    {
    }
    void choose(int item)
    {
        m_client.obey(
            QStringLiteral("set"), { { QStringLiteral("control"), QStringLiteral("RadioGroup1") }, { QStringLiteral("itemIndex"), item } });
    }
    bool isShown(const QString &control)
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[u"visible"].toBool();
    }
    QString caption(const QString &control)
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[u"caption"].toString();
    }
};

TEST_F(BillContrastScan, ScansWithoutAWaybillAreTheSecondPagesQuestion)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-14 23:59:59" },
        { "DBLookupComboboxEh5", u"北京" }, { "DBComboBoxEh1", u"收件" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBLookupComboboxEh2", u"" } });
    page(QStringLiteral("TabSheet2"));
    choose(1);
    EXPECT_TRUE(isShown(QStringLiteral("DBLookupComboboxEh2")) && !isShown(QStringLiteral("DBLookupComboboxEh1")));
    EXPECT_EQ(caption(QStringLiteral("GroupBox1")), QStringLiteral("扫描时间范围(3天以内)"));
    m_client.set(QStringLiteral("DBComboBoxEh1"), QStringLiteral("到件"));
    query();
    const QStringList bills = column(QStringLiteral("DataView1"), QStringLiteral("BILL_CODE"));
    ASSERT_GT(bills.size(), 0);
    for (const QString &bill : bills)
        EXPECT_EQ(answerOf(u"select count(*) from tab_bill where bill_code='" + bill + u'\''), QStringLiteral("0"));
    EXPECT_EQ(pageIndex(), 1) << "a query leaves its page in front";
}

TEST_F(BillContrastScan, WaybillsWithoutAScanAreTheFirstPagesQuestion)
{
    choose(0);
    EXPECT_TRUE(isShown(QStringLiteral("DBLookupComboboxEh1")) && !isShown(QStringLiteral("DBLookupComboboxEh2")));
    EXPECT_EQ(caption(QStringLiteral("GroupBox1")), QStringLiteral("寄件日期范围(3天以内)"));
    m_client.set(QStringLiteral("DBComboBoxEh1"), QStringLiteral("派件"));
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QStringLiteral("北京海淀"));
    query();
    const QStringList bills = column(QStringLiteral("DataView2"), QStringLiteral("BILL_CODE"));
    ASSERT_GT(bills.size(), 0);
    for (const QString &bill : bills)
        EXPECT_EQ(answerOf(u"select count(*) from tab_scan_disp where bill_code='" + bill + u'\''), QStringLiteral("0"));
}

class BillContrastSiteCome : public ScreenTest {
protected:
    BillContrastSiteCome()
        : ScreenTest(QStringLiteral("frm_BillContrastSiteCome"), { QStringLiteral("--login-site"), QStringLiteral("北京海淀") })
    {
    }
};

TEST_F(BillContrastSiteCome, RowsWhoseDestinationsDifferAreRed)
{
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-12 00:00:00"));
    query();
    const QString view = QStringLiteral("DataView2");
    const QStringList written = column(view, QStringLiteral("DISPATCH_SITE"));
    const QStringList scanned = column(view, QStringLiteral("SCAN_DISPATCH_SITE"));
    bool same = false;
    for (int row = 0; row < int(written.size()); ++row) {
        const QString colour = m_client
                                   .obey(QStringLiteral("colour"),
                                       { { QStringLiteral("view"), view }, { QStringLiteral("row"), row },
                                           { QStringLiteral("field"), QStringLiteral("BILL_CODE") } })[u"colour"]
                                   .toString();
        EXPECT_EQ(colour == u"#ff0000", written[row] != scanned[row]) << row;
        same = same || written[row] == scanned[row];
    }
    EXPECT_TRUE(same) << "every row is red";
}

} // namespace
