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
    query();
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
