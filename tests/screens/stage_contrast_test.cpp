#include "tests/screens/screen_test.h"

namespace {

const QString view = QStringLiteral("DataView1");
const QString scanSite = QStringLiteral("DBLookupComboboxEh3");

/// The scans of `present` at `site` that have no scan in `missing`; `site` with its conditions.
QString statement(const QString &present, const QString &missing, const QString &site)
{
    return u"select /*+index(a," + present.toUpper()
        + u"_I3)*/a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,"
          "a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.SEND_SITE,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,a.PIECE,a.WEIGHT,a.CLASS,"
          "a.GOODS_TYPE,a.FAST_TYPE,a.TRANSFER_OR_DISPATCH_FEE,a.other_fee,a.REMARK from "
        + present
        + u" a where a.scan_date between to_date('2026-03-14 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
          "to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss') and a.scan_site='"
        + site + u" and (not exists(select /*+index(b," + missing.toUpper() + u"_I)*/1 from " + missing
        + u" b where b.bill_code=a.bill_code))";
}

const std::vector<Condition> conditions {
    { "DBLookupComboboxEh5", u"上海中心", u" and a.PRE_OR_NEXT_STATION='上海中心'" },
    { "DBComboBoxEh4", u"班车", u" and a.class='班车'" },
    { "DBComboBoxEh1", u"", u" and a.GOODS_TYPE=''" },
    { "DBComboBoxEh2", u"陆运件", u" and a.FAST_TYPE='陆运件'" },
    { "DBLookupComboboxEh1", u"上海静安", u" and a.SEND_SITE='上海静安'" },
    { "DBLookupComboboxEh4", u"广州", u" and a.DISPATCH_SITE='广州'" },
};

class ComeDispContrast : public ScreenTest {
protected:
    ComeDispContrast()
        : ScreenTest(QStringLiteral("frm_ComeDispContrast"))
    {
    }
    void expectNoneIn(const QString &table)
    {
        ASSERT_GT(rowCount(view), 0);
        for (const QString &bill : column(view, QStringLiteral("BILL_CODE")))
            EXPECT_EQ(answerOf(u"select count(*) from " + table + u" where bill_code='" + bill + u'\''), QStringLiteral("0"));
    }
};

TEST_F(ComeDispContrast, ComparesArrivalsWithDeliveriesBothWays)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-14 23:59:59" },
        { "DBLookupComboboxEh3", u"北京" }, { "DBLookupComboboxEh5", u"" }, { "DBLookupComboboxEh2", u"" }, { "DBComboBoxEh4", u"全部" } });
    const QString come = QStringLiteral("TAB_SCAN_COME");
    const QString disp = QStringLiteral("TAB_SCAN_DISP");
    EXPECT_EQ(query(), QStringList(statement(come, disp, QStringLiteral("北京'"))));
    expectNoneIn(disp);
    expectConditions(conditions, [&](const QString &added) { return statement(come, disp, u"北京'" + added); });
    for (const Condition &condition : conditions)
        m_client.set(QString::fromLatin1(condition.control),
            QString::fromLatin1(condition.control).startsWith(u"DBC") ? QStringLiteral("全部") : QString());
    tick(QStringLiteral("RadioButton2"), true);
    m_client.set(scanSite, QStringLiteral("北京"));
    EXPECT_EQ(query(), QStringList(statement(disp, come, QStringLiteral("北京'"))));
}

TEST_F(ComeDispContrast, RefusesAnEmptySiteAndMoreThanAMonth)
{
    m_client.set(scanSite, QString());
    expectRefusal(QStringLiteral("详细：扫描网点必须选择！|到派对比|48"), scanSite);
    EXPECT_EQ(happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList()) << "refused before the query begins";
    m_client.set(scanSite, QStringLiteral("北京"));
    expectRangeRefusals(31);
}

class RecSendContrast : public ScreenTest {
protected:
    explicit RecSendContrast(const QStringList &options = {})
        : ScreenTest(QStringLiteral("frm_RecSendContrast"), options)
    {
    }
};

TEST_F(RecSendContrast, IsForOutletsOnly)
{
    expectRefusal(QStringLiteral("详细：收发对比的网点类型必须是\"网点\"！|收发对比|48"));
    m_client.set(scanSite, QString());
    expectRefusal(QStringLiteral("详细：扫描网点必须选择！|收发对比|48"), scanSite);
}

class RecSendAtAnOutlet : public RecSendContrast {
protected:
    RecSendAtAnOutlet()
        : RecSendContrast({ QStringLiteral("--login-site"), QStringLiteral("北京海淀") })
    {
    }
};

TEST_F(RecSendAtAnOutlet, ComparesSendOutsWithPickUpsBothWays)
{
    const QString send = QStringLiteral("tab_scan_send");
    const QString rec = QStringLiteral("tab_scan_rec");
    EXPECT_EQ(query(), QStringList(statement(send, rec, QStringLiteral("北京海淀'"))));
    tick(QStringLiteral("RadioButton2"), true);
    EXPECT_EQ(query(), QStringList(statement(rec, send, QStringLiteral("北京海淀'"))));
}

} // namespace
