#include "tests/screens/screen_test.h"

namespace {

const QString view = QStringLiteral("DataView1");
const QString notArrived = QStringLiteral(" and (not exists(select /*+index(b,TAB_SCAN_COME_I)*/1 from tab_scan_come b  where "
                                          "bill_code=a.bill_code and scan_site=a.PRE_OR_NEXT_STATION))");
const QString mainBills = QStringLiteral(" and REGEXP_INSTR(a.bill_code, '^([0-9]{8}|[0-9]{12})$', 1, 1) > 0  and "
                                         "REGEXP_INSTR(a.bill_code, '^([1,2,4,6][0-9]{7})$', 1, 1) = 0 ");

QString byDate(const QString &conditions)
{
    return u"select /*+index(a,TAB_SCAN_SEND_I3)*/a.* from tab_scan_send a  where a.scan_date between to_date('2026-03-14 "
           "00:00:00','yyyy-mm-dd hh24:mi:ss') and to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss') and a.SCAN_SITE='北京'"
        + conditions + u' ' + notArrived + u" order by a.bill_code";
}

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
    EXPECT_EQ(query(), QStringList(byDate({})));
    const QStringList bills = column(view, QStringLiteral("BILL_CODE"));
    const QStringList stations = column(view, QStringLiteral("PRE_OR_NEXT_STATION"));
    ASSERT_GT(bills.size(), 0);
    for (qsizetype row = 0; row < bills.size(); ++row)
        EXPECT_EQ(
            answerOf(u"select count(*) from tab_scan_come where bill_code='" + bills[row] + u"' and scan_site='" + stations[row] + u'\''),
            QStringLiteral("0"));

    expectConditions({ { "DBComboBoxEh4", u"班车", u" and a.class='班车'" }, { "DBComboBoxEh1", u"", u" and a.GOODS_TYPE=''" },
                         { "DBComboBoxEh2", u"陆运件", u" and a.FAST_TYPE='陆运件'" },
                         { "DBLookupComboboxEh1", u"上海静安", u" and a.SEND_SITE='上海静安'" },
                         { "DBLookupComboboxEh4", u"广州", u" and a.DISPATCH_SITE='广州'" },
                         { "DBL_NEXTSITE", u"上海中心", u" and a.PRE_OR_NEXT_STATION='上海中心'" } },
        byDate);
}

TEST_F(SendNextUnCome, MainWaybillsOnly)
{
    tick(QStringLiteral("cb1"), true);
    EXPECT_EQ(query(), QStringList(byDate(mainBills)));
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
    list({ lost.first(), QStringLiteral(" x'y "), lost.last() });
    const QString head = u"select /*+index(a,TAB_SCAN_SEND_I)*/a.* from tab_scan_send a  where a.bill_code in ('" + lost.last()
        + u"','x'y','" + lost.first() + u"') and a.scan_site='北京'";
    EXPECT_EQ(query(), QStringList(head + notArrived + u" order by a.bill_code"));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1) << "the quote is the database's to refuse";
    list({ lost.first(), lost.last() });
    tick(QStringLiteral("cb1"), true);
    EXPECT_EQ(query(),
        QStringList(u"select /*+index(a,TAB_SCAN_SEND_I)*/a.* from tab_scan_send a  where a.bill_code in ('" + lost.last() + u"','"
            + lost.first() + u"') and a.scan_site='北京'" + notArrived + mainBills + u" order by a.bill_code"));
    EXPECT_EQ(rowCount(view), 2);
}

TEST_F(SendNextUnCome, RefusesAnEmptySiteAndMoreThanThreeDays)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QString());
    expectRefusal(QStringLiteral("详细：扫描网点必须选择！|本站有发下站未到|48"), QStringLiteral("DBLookupComboboxEh5"));
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QStringLiteral("北京"));
    expectRangeRefusals(3);
}

} // namespace
