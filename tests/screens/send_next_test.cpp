#include "tests/screens/screen_test.h"

namespace {

const QString view = QStringLiteral("DataView1");
class SendNextUnCome : public ScreenTest {
protected:
    SendNextUnCome()
        : ScreenTest(QStringLiteral("frm_SendNextUnCome"))
    {
    }
};

TEST_F(SendNextUnCome, ListsWhatNeverArrivedAtTheNextStation)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-14 23:59:59" },
        { "DBLookupComboboxEh5", u"北京" }, { "DBComboBoxEh4", u"全部" }, { "DBComboBoxEh1", u"全部" }, { "DBComboBoxEh2", u"全部" },
        { "DBLookupComboboxEh1", u"" }, { "DBLookupComboboxEh4", u"" }, { "DBL_NEXTSITE", u"" } });
    query();
    const QStringList bills = column(view, QStringLiteral("BILL_CODE"));
    const QStringList stations = column(view, QStringLiteral("PRE_OR_NEXT_STATION"));
    ASSERT_GT(bills.size(), 0);
    for (qsizetype row = 0; row < bills.size(); ++row)
        EXPECT_EQ(
            answerOf(u"select count(*) from tab_scan_come where bill_code='" + bills[row] + u"' and scan_site='" + stations[row] + u'\''),
            QStringLiteral("0"));
}

TEST_F(SendNextUnCome, MainWaybillsOnly)
{
    tick(QStringLiteral("cb1"), true);
    query();
    ASSERT_GT(rowCount(view), 0);
    for (const QString &bill : column(view, QStringLiteral("BILL_CODE")))
        EXPECT_EQ(bill.size(), 12) << "eight digits that begin with 1, 2, 4 or 6 are no main waybills";
}

TEST_F(SendNextUnCome, AListIgnoresEveryOtherConditionButTheLoginSite)
{
    tick(QStringLiteral("cb1"), true);
    query();
    tick(QStringLiteral("cb1"), false);
    const QStringList lost = column(view, QStringLiteral("BILL_CODE"));
    ASSERT_GT(lost.size(), 1);
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QStringLiteral("北京市内部"));
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("昨天"));
    tick(QStringLiteral("InputList1.CheckBox1"), true);
    expectRefusal(QStringLiteral("详细：没有输入任何运单编号！|详细：|48"));
    EXPECT_EQ(rowCount(view), int(lost.size()));
    list({ lost.first(), lost.last() });
    query();
    EXPECT_EQ(rowCount(view), 2);
}

} // namespace
