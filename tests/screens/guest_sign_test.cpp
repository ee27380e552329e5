#include "tests/screens/screen_test.h"

namespace {

const QString view = QStringLiteral("DataView1");

class GuestSignQuery : public ScreenTest {
protected:
    GuestSignQuery()
        : ScreenTest(QStringLiteral("frm_GuestSignQuery"))
    {
    }
    QString cell(const QString &field, int row) { return column(view, field).value(row); }
};

TEST_F(GuestSignQuery, EveryLineGetsItsRowFromFourQueriesOverTheSecondConnection)
{
    const QString signedOnly
        = answerOf(QStringLiteral("select min(a.bill_code) from tab_sign a where not exists(select 1 from tab_bill b where "
                                  "b.bill_code=a.bill_code) and not exists(select 1 from tab_problem c where "
                                  "c.bill_code=a.bill_code)"));
    const QString everything
        = answerOf(QStringLiteral("select min(a.bill_code) from tab_sign a where exists(select 1 from tab_bill b where "
                                  "b.bill_code=a.bill_code) and exists(select 1 from tab_problem c where "
                                  "c.bill_code=a.bill_code)"));
    const QString underWay
        = answerOf(QStringLiteral("select max(a.bill_code) from tab_bill a where not exists(select 1 from tab_sign b where "
                                  "b.bill_code=a.bill_code)"));
    list({ signedOnly, everything, QStringLiteral(" ") + underWay, underWay, everything, QString(), QStringLiteral("0") });
    const QString bills
        = u"('0','','" + everything + u"','" + underWay + u"','" + underWay + u"','" + everything + u"','" + signedOnly + u"')";
    const QStringList expected {
        u"select /*+index(a,TAB_SIGN_I1)*/a.BILL_CODE,a.STATE_NAME||'' as STATE_NAME,a.SIGN_MAN||'' as SIGN_MAN,"
        "to_char(a.SIGN_DATE,'yyyy-mm-dd hh24:mi:ss') as SIGN_DATE,a.DISPATCH_NAME||'' as DISPATCH_NAME,"
        "to_char(a.RECORD_DATE,'yyyy-mm-dd hh24:mi:ss') as RECORD_DATE,a.RECORD_SITE||'' as RECORD_SITE,a.RECORD_MAN||'' as RECORD_MAN,"
        "a.RECORD_MAN_CODE||'' as RECORD_MAN_CODE,a.REMARK,a.MODIFY_SITE,a.MODIFIER,a.MODIFIER_CODE,b.GOODS_TYPE,b.SEND_SITE,"
        "b.dispatch_site,b.SETTLEMENT_WEIGHT,b.topayment,b.send_date,1 as bl_sign,(case when exists(select /*+index(e,TAB_PROBLEM_I)*/1 "
        "from TAB_PROBLEM e where bill_code=a.bill_code) then 1 else 0 end) as bl_problem,(case when b.bill_code is null then 0 else 1 "
        "end) as bl_bill,'                                                                                                    ' as "
        "BILL_NOW_POS from tab_sign a left join (select /*+index(b,TAB_BILL_P)*/b.bill_code,b.GOODS_TYPE,b.SEND_SITE,b.dispatch_site,"
        "b.SETTLEMENT_WEIGHT,b.topayment,b.send_date from tab_bill b where b.bill_code in "
            + bills + u") b on a.bill_code=b.bill_code where a.bill_code in " + bills,
        u"select /*+index(a,TAB_PROBLEM_I)*/distinct a.bill_code from TAB_PROBLEM a where a.bill_code in " + bills,
        u"select /*+index(a,TAB_BILL_P)*/a.bill_code,a.GOODS_TYPE,a.SEND_SITE,a.dispatch_site,a.SETTLEMENT_WEIGHT,a.topayment,"
        "a.send_date,1 as bl_bill from TAB_BILL a where a.bill_code in "
            + bills,
        u"select /*+index(a,TAB_BILL_STATUS_P)*/ a.bill_code,a.BILL_NOW_POS from TAB_BILL_STATUS a where a.bill_code in " + bills,
    };
    EXPECT_EQ(query(), expected);
    EXPECT_EQ(happened(QStringLiteral("statement"), { QStringLiteral("connection") }), QStringList(4, QStringLiteral("second")));

    EXPECT_EQ(column(view, QStringLiteral("BILL_CODE")),
        QStringList({ signedOnly, everything, u' ' + underWay, underWay, everything, QStringLiteral("0") }));
    // Signed for, entered, with a problem; the untrimmed line and the second of two equal ones are told nothing.
    EXPECT_EQ(column(view, QStringLiteral("bl_sign")), QStringList({ QStringLiteral("1"), QStringLiteral("1"), {}, {}, {}, {} }));
    EXPECT_EQ(column(view, QStringLiteral("bl_bill")),
        QStringList({ QStringLiteral("0"), QStringLiteral("1"), {}, QStringLiteral("1"), {}, {} }));
    EXPECT_EQ(cell(QStringLiteral("bl_problem"), 1), QStringLiteral("1"));
    EXPECT_EQ(cell(QStringLiteral("bl_problem"), 0) + cell(QStringLiteral("bl_problem"), 5), QStringLiteral("00"));
    EXPECT_EQ(cell(QStringLiteral("SIGN_DATE"), 1),
        answerOf(u"select to_char(sign_date,'yyyy-mm-dd hh24:mi:ss') from tab_sign where bill_code='" + everything + u'\''));
    EXPECT_EQ(cell(QStringLiteral("BILL_NOW_POS"), 3),
        answerOf(u"select bill_now_pos from tab_bill_status where bill_code='" + underWay + u'\''));
    EXPECT_EQ(cell(QStringLiteral("send_date"), 3),
        answerOf(u"select to_char(send_date,'yyyy-mm-dd hh24:mi:ss') from tab_bill where bill_code='" + underWay + u'\''));
    EXPECT_TRUE(m_client.obey(QStringLiteral("close"))[u"closed"].toBool()) << "what was put together here is no unsaved edit";
    EXPECT_EQ(m_client.events(QStringLiteral("message")).size(), 0);
}

TEST_F(GuestSignQuery, AnEmptyListKeepsTheResultAndAnErrorEndsTheQueryThere)
{
    const QString bill = answerOf(QStringLiteral("select min(bill_code) from tab_sign"));
    list({ bill });
    query();
    list({ QStringLiteral("  ") });
    expectRefusal(QStringLiteral("详细：没有输入任何运单编号！|详细：|48"));
    EXPECT_EQ(column(view, QStringLiteral("BILL_CODE")), QStringList(bill));
    list({ QStringLiteral("O'Neill") });
    EXPECT_EQ(query().size(), 1);
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1);
    EXPECT_EQ(
        happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList({ QStringLiteral("102"), QStringLiteral("0") }));
    EXPECT_EQ(column(view, QStringLiteral("BILL_CODE")), QStringList(bill));
}

} // namespace
