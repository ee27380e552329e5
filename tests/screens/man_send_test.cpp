#include "tests/screens/screen_test.h"

namespace {

class ManSend : public ScreenTest {
protected:
    ManSend()
        : ScreenTest(QStringLiteral("frm_ManSend"))
    {
    }
};

TEST_F(ManSend, CountsTheDayOfTheLoginSite)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-15 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-15 23:59:59" },
        { "DBLookupComboboxEh1", u"北京" }, { "DBLookupComboboxEh5", u"" }, { "DBLookupComboboxEh2", u"" }, { "DBComboBoxEh4", u"全部" } });
    query();
    EXPECT_EQ(footer(QStringLiteral("DataView2"), QStringLiteral("BILLCOUNT")),
        answerOf(QStringLiteral(
            "select count(*) from tab_scan_send where scan_site='北京' and scan_date >= to_date('2026-03-15','yyyy-mm-dd')")));
}

TEST_F(ManSend, TheDetailIsThatOfTheRowAndCountsAsManyRows)
{
    query();
    const QString summary = QStringLiteral("DataView2");
    const QStringList men = column(summary, QStringLiteral("scan_man"));
    const QStringList shifts = column(summary, QStringLiteral("CLASS"));
    const QStringList counts = column(summary, QStringLiteral("BILLCOUNT"));
    const QStringList weights = column(summary, QStringLiteral("WEIGHT"));
    const int none = int(shifts.indexOf(QString()));
    ASSERT_GE(none, 0);
    for (const int row : { none, int(men.size()) - 1 }) {
        EXPECT_EQ(doubleClick(summary, row, QStringLiteral("scan_man")).size(), 1);
        EXPECT_EQ(rowCount(QStringLiteral("DataView1")), counts[row].toInt());
        EXPECT_EQ(footer(QStringLiteral("DataView1"), QStringLiteral("WEIGHT")).toDouble(), weights[row].toDouble());
        page(QStringLiteral("TabSheet1"));
        EXPECT_EQ(page(QStringLiteral("TabSheet2")), QStringList());
        page(QStringLiteral("TabSheet1"));
    }
}

TEST_F(ManSend, TheSiteComesBack)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    EXPECT_EQ(m_client.textOf(QStringLiteral("DBLookupComboboxEh1")), QStringLiteral("北京"));
}

} // namespace
