#include "tests/screens/screen_test.h"

namespace {

const QString range = QStringLiteral(" where a.scan_date between to_date('2026-03-15 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                     "to_date('2026-03-15 23:59:59','yyyy-mm-dd hh24:mi:ss') and a.scan_site='北京'");
const QString weight
    = QStringLiteral("(select /*+index(c,TAB_SCAN_COME_I)*/c.weight from tab_scan_come c where c.bill_code=a.bill_code and "
                     "c.scan_site=a.scan_site and c.scan_date =(select /*+index(d,TAB_SCAN_COME_I)*/ max(scan_date) from tab_scan_come d "
                     "where d.bill_code = c.bill_code and d.scan_site=c.scan_site)) as weight from tab_scan_send a ");

QString statistics(const QString &conditions)
{
    return u"select a.class, a.scan_man,sum(a.weight) as weight,sum(a.billcount) as billcount from (select "
           "/*+index(a,TAB_SCAN_SEND_I3)*/ a.class,1 as billcount, a.scan_man,"
        + weight + range + conditions + u") a  group by a.class, a.scan_man order by a.class,a.scan_man";
}

class ManSend : public ScreenTest {
protected:
    ManSend()
        : ScreenTest(QStringLiteral("frm_ManSend"))
    {
    }
};

TEST_F(ManSend, CountsTheDayOfTheLoginSiteByItsConditions)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-15 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-15 23:59:59" },
        { "DBLookupComboboxEh1", u"北京" }, { "DBLookupComboboxEh5", u"" }, { "DBLookupComboboxEh2", u"" }, { "DBComboBoxEh4", u"全部" } });
    EXPECT_EQ(query(), QStringList(statistics({})));
    EXPECT_EQ(footer(QStringLiteral("DataView2"), QStringLiteral("BILLCOUNT")),
        answerOf(QStringLiteral(
            "select count(*) from tab_scan_send where scan_site='北京' and scan_date >= to_date('2026-03-15','yyyy-mm-dd')")));
    expectConditions(
        { { "DBLookupComboboxEh5", u"上海中心", u" and a.PRE_OR_NEXT_STATION='上海中心'" }, { "DBComboBoxEh4", u"", u" and a.class=''" } },
        statistics);
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
        const QString shift
            = shifts[row].isEmpty() ? QStringLiteral(" and a.class is null ") : QString(u" and a.class='" + shifts[row] + u'\'');
        const QStringList sent = doubleClick(summary, row, QStringLiteral("scan_man"));
        EXPECT_EQ(sent,
            QStringList(u"select /*+index(a,TAB_SCAN_SEND_I3)*/a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,"
                        "a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.SEND_SITE,a.PRE_OR_NEXT_STATION,"
                        "a.DISPATCH_SITE,a.PIECE,a.CLASS,a.GOODS_TYPE,a.NET_MANAGE_FEE,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE,a.other_fee,"
                        "a.REMARK,"
                + weight + range + u" and a.scan_man='" + men[row] + u'\'' + shift + u"order by a.scan_site"));
        EXPECT_EQ(rowCount(QStringLiteral("DataView1")), counts[row].toInt());
        EXPECT_EQ(footer(QStringLiteral("DataView1"), QStringLiteral("WEIGHT")).toDouble(), weights[row].toDouble());
        page(QStringLiteral("TabSheet1"));
        EXPECT_EQ(page(QStringLiteral("TabSheet2")), QStringList());
        page(QStringLiteral("TabSheet1"));
    }
}

TEST_F(ManSend, TheSiteComesBackAndBadRangesAreRefused)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    EXPECT_EQ(m_client.textOf(QStringLiteral("DBLookupComboboxEh1")), QStringLiteral("北京"));
    expectRangeRefusals(31);
}

} // namespace
