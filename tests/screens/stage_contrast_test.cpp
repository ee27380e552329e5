#include "tests/screens/screen_test.h"

namespace {

const QString view = QStringLiteral("DataView1");
const QString scanSite = QStringLiteral("DBLookupComboboxEh3");

class ComeDispContrast : public ScreenTest {
protected:
    ComeDispContrast()
        : ScreenTest(QStringLiteral("frm_ComeDispContrast"))
    {
    }
};

TEST_F(ComeDispContrast, ListsArrivalsWithoutADelivery)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-14 23:59:59" },
        { "DBLookupComboboxEh3", u"北京" }, { "DBLookupComboboxEh5", u"" }, { "DBLookupComboboxEh2", u"" }, { "DBComboBoxEh4", u"全部" } });
    query();
    ASSERT_GT(rowCount(view), 0);
    for (const QString &bill : column(view, QStringLiteral("BILL_CODE")))
        EXPECT_EQ(answerOf(u"select count(*) from TAB_SCAN_DISP where bill_code='" + bill + u'\''), QStringLiteral("0"));
}

TEST_F(ComeDispContrast, RefusesAnEmptySiteBeforeTheQueryBegins)
{
    m_client.set(scanSite, QString());
    expectRefusal(QStringLiteral("详细：扫描网点必须选择！|到派对比|48"), scanSite);
    EXPECT_EQ(happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList()) << "refused before the query begins";
}

} // namespace
