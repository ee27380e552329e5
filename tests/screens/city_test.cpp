// The screens that settle with couriers and departments: city fees, the business department and the destinations.

#include "tests/screens/screen_test.h"

#include <algorithm>

namespace {

qint64 cents(const QString &amount) { return qRound64(amount.toDouble() * 100); }

class CityFee : public ScreenTest {
protected:
    CityFee()
        : ScreenTest(QStringLiteral("frm_BJDispFee"))
    {
    }
    const QString m_summary = QStringLiteral("DataView1");
    const QString m_details = QStringLiteral("DataView2");
};

TEST_F(CityFee, TheBalanceIsPickedUpMinusDeliveredAndEachHalfHasItsDetail)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14" }, { "DBDateTimeEditEh2", u"2026-03-14" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBLookupComboboxEh6", u"" } });
    const QStringList sent = query();
    ASSERT_EQ(sent.size(), 1);
    const QString signedFor = QStringLiteral("a.sign_date between to_date('2026-03-14 00:00:00','yyyy-mm-dd hh24:mi:ss')  and  "
                                             "to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss')  and a.SIGN_SITE_CENTER='北京'");
    EXPECT_EQ(sent[0],
        u"select a.scan_site1,a.dispatch_or_send_man,a.bill_count2,a.bill_count1,  -a.dispatch_fee2 as dispatch_fee2,  a.dispatch_fee1 as "
        "dispatch_fee1,(a.dispatch_fee1-a.dispatch_fee2) as sum  from (select a.scan_site1 ,a.dispatch_or_send_man,   sum((case when "
        "flag=1 then 1 else 0 end )) as bill_count2, sum((case when flag=1 then a.dispatch_fee else 0 end )) as dispatch_fee2, sum((case "
        "when flag=0 then 1 else 0 end )) as bill_count1, sum((case when flag=0 then a.dispatch_fee else 0 end )) as dispatch_fee1  from "
        "(select /*+index(a,TAB_SIGN_I2)*/  (select /*+index(b,TAB_SCAN_DISP_I)*/  b.dispatch_or_send_man  from tab_scan_disp b where "
        "b.bill_code=a.bill_code and b.scan_date=  ( select /*+index(c,TAB_SCAN_DISP_I)*/ max(c.scan_date) from tab_scan_disp c  where "
        "c.bill_code=b.bill_code ) and rownum=1) as dispatch_or_send_man,'北京' as scan_site1,  1 as flag, a.dispatch_fee from tab_sign a "
        "where  "
            + signedFor
            + u" and exists(select /*+index(a,TAB_SCAN_DISP_I)*/ 1 from tab_scan_disp b  where b.bill_code=a.bill_code  and b.scan_date=  "
              u"( "
              "select /*+index(c,TAB_SCAN_DISP_I)*/ max(c.scan_date) from tab_scan_disp c  where c.bill_code=b.bill_code )  and "
              "b.scan_site='北京') and a.REC_SITE_CENTER=a.SIGN_SITE_CENTER union all select /*+index(a,TAB_SIGN_I2)*/ (select "
              "/*+index(b,TAB_SCAN_REC_I)*/  b.dispatch_or_send_man  from TAB_SCAN_REC b where b.bill_code=a.bill_code and b.scan_date=  ( "
              "select /*+index(c,TAB_SCAN_REC_I)*/ min(c.scan_date) from TAB_SCAN_REC c  where c.bill_code=b.bill_code )and rownum=1) as "
              "dispatch_or_send_man,'北京' as scan_site1,  0 as flag, a.dispatch_fee from tab_sign a where  "
            + signedFor
            + u" and exists(select /*+index(a,TAB_SCAN_DISP_I)*/ 1 from tab_scan_disp b  left join tab_site c on c.site_name=b.scan_site   "
              "where b.bill_code=a.bill_code and c.PROVINCE='北京') and exists(select /*+index(a,TAB_SCAN_REC_I)*/ 1 from TAB_SCAN_REC b  "
              "where b.bill_code=a.bill_code  and b.scan_date=  ( select /*+index(c,TAB_SCAN_REC_I)*/ min(c.scan_date) from TAB_SCAN_REC c "
              " where c.bill_code=b.bill_code )  and b.scan_site='北京')) a group by a.scan_site1,a.dispatch_or_send_man) a ");
    const QStringList picked = column(m_summary, QStringLiteral("DISPATCH_FEE1"));
    const QStringList delivered = column(m_summary, QStringLiteral("DISPATCH_FEE2"));
    const QStringList balances = column(m_summary, QStringLiteral("sum"));
    const QStringList counts = column(m_summary, QStringLiteral("BILL_COUNT1"));
    ASSERT_GT(balances.size(), 0);
    for (qsizetype row = 0; row < balances.size(); ++row)
        EXPECT_EQ(cents(picked[row]) + cents(delivered[row]), cents(balances[row])) << "the delivered fee is shown negative";

    expectEveryDetailAddsUp(m_summary, m_details, QStringLiteral("BILL_COUNT1"), { { "DISPATCH_FEE1", "DISPATCH_FEE" } });

    const qsizetype picker = counts.indexOf(*std::max_element(counts.begin(), counts.end()));
    EXPECT_EQ(doubleClick(m_summary, int(picker), QStringLiteral("BILL_COUNT1")).size(), 1);
    EXPECT_EQ(rowCount(m_details), counts[picker].toInt());
    EXPECT_EQ(cents(footer(m_details, QStringLiteral("DISPATCH_FEE"))), cents(picked[picker]));
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(doubleClick(m_summary, int(picker), QStringLiteral("BILL_COUNT2")).size(), 1) << "the other half of the same row";
    page(QStringLiteral("TabSheet1"));
    const QStringList both = doubleClick(m_summary, int(picker), QStringLiteral("sum"));
    ASSERT_EQ(both.size(), 1);
    EXPECT_TRUE(both[0].contains(u" union all "));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }), QStringList());
}

TEST_F(CityFee, TheStaffFollowsTheSiteAndAnEmptySiteIsRefused)
{
    m_client.events();
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("北京海淀"));
    const QJsonArray sent = m_client.events(QStringLiteral("statement"));
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(sent[0][u"sql"].toString(),
        QStringLiteral("select /*+index(a,TAB_EMPLOYEE_I)*/a.EMPLOYEE_CODE,a.EMPLOYEE_NAME, a.OWNER_SITE,a.DEPT_NAME from tab_employee a "
                       "where a.OWNER_SITE='北京海淀' and a.DEPT_NAME='业务部'"));
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    expectRefusal(QStringLiteral("详细：站点必须选择!|北京市内收派费查询|48"), QStringLiteral("DBLookupComboboxEh1"));
}

class SaleQry : public ScreenTest {
protected:
    SaleQry()
        : ScreenTest(QStringLiteral("frm_SaleQry"))
    {
    }
};

TEST_F(SaleQry, EveryDetailAddsUpToItsPerson)
{
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-01 00:00:00"));
    const QStringList sent = query();
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(
        sent[0].endsWith(u"from tab_scan_come a  where  a.scan_date between to_date('2026-03-01 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                         u"to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss') and a.scan_site= '北京' and "
                         u"a.PRE_OR_NEXT_STATION='北京业务部'  ) a group by  "
                         u"DISPATCH_OR_SEND_MAN"))
        << sent[0].toStdString();
    const QString summary = QStringLiteral("DataView2");
    const QString details = QStringLiteral("DataView1");
    const QStringList people = column(summary, QStringLiteral("DISPATCH_OR_SEND_MAN"));
    ASSERT_GT(people.size(), 1);
    for (int row = 0; row < 2; ++row) {
        const QStringList asked = doubleClick(summary, row, QStringLiteral("bill_count"));
        ASSERT_EQ(asked.size(), 1);
        EXPECT_TRUE(asked[0].contains(people[row].isEmpty() ? u"' and not exists ( select " : u"' and exists ( select "))
            << asked[0].toStdString();
        page(QStringLiteral("TabSheet1"));
    }
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"), { { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    doubleClick(summary, 0, QStringLiteral("bill_count"));
    doubleClick(details, 0, QStringLiteral("SCAN_SITE"));
    const QStringList opened = happened(QStringLiteral("guest"), { QStringLiteral("connections") });
    EXPECT_EQ(opened.size(), 1);
}

class DestQry : public ScreenTest {
protected:
    DestQry()
        : ScreenTest(QStringLiteral("frm_DestQry"))
    {
    }
    const QString m_summary = QStringLiteral("DataView2");
};

TEST_F(DestQry, TheClassesAddUpToTheTotalAndTheCellChoosesTheClass)
{
    ASSERT_EQ(query().size(), 1);
    const auto counted = [this](const QString &field) { return column(m_summary, field); };
    const QStringList totals = counted(QStringLiteral("sum_bill65"));
    ASSERT_GT(totals.size(), 0);
    const QStringList trucks = counted(QStringLiteral("bill_count64"));
    const QStringList flights = counted(QStringLiteral("bill_count61"));
    const QStringList rails = counted(QStringLiteral("bill_count62"));
    const QStringList others = counted(QStringLiteral("bill_count63"));
    for (qsizetype row = 0; row < totals.size(); ++row)
        EXPECT_EQ(trucks[row].toInt() + flights[row].toInt() + rails[row].toInt() + others[row].toInt(), totals[row].toInt());
    expectEveryDetailAddsUp(m_summary, QStringLiteral("DataView1"), QStringLiteral("sum_bill65"),
        { { "sum_weight65", "WEIGHT" }, { "sum_fee65", "TRANSFER_OR_DISPATCH_FEE" } });
    expectEveryDetailAddsUp(m_summary, QStringLiteral("DataView1"), QStringLiteral("bill_count63"),
        { { "TRANSFER_OR_DISPATCH_FEE63", "TRANSFER_OR_DISPATCH_FEE" } });
    int row = 0;
    while (flights[row].toInt() == 0)
        ++row;
    for (const auto &[field, count, condition] : { std::tuple("bill_count61", flights[row], u" and a.class =  '航班'"),
             std::tuple("sum_bill65", totals[row], u""), std::tuple("sum_bill65", totals[row], u"") }) {
        const QStringList sent = doubleClick(m_summary, row, QString::fromLatin1(field));
        ASSERT_EQ(sent.size(), 1) << "every visit asks again";
        EXPECT_TRUE(sent[0].contains(QString(u"and a.scan_site='北京'" + QString::fromUtf16(condition) + u" and a.PRE_OR_NEXT_STATION='")));
        EXPECT_EQ(rowCount(QStringLiteral("DataView1")), count.toInt());
        page(QStringLiteral("TabSheet1"));
    }
}

TEST_F(DestQry, ByDestinationTheTextsDifferAndTwoOfThemTheDatabaseRefuses)
{
    tick(QStringLiteral("RadioButton2"), true);
    m_client.set(QStringLiteral("DBNumberEditEh1"), QStringLiteral("1.5"));
    m_client.set(QStringLiteral("DBLookupComboboxEh4"), QStringLiteral("上海静安"));
    QStringList sent = query();
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(sent[0].endsWith(
        u" and a.scan_site='北京'  and a.DISPATCH_SITE='上海静安'   and  nvl(a.WEIGHT,0)  >='1.5'  group by a.DISPATCH_SITE  "
        u"order by DISPATCH_SITE65"))
        << sent[0].toStdString();
    const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), m_summary } })[u"columns"].toArray();
    EXPECT_EQ(std::count_if(columns.begin(), columns.end(), [](const QJsonValue &shown) { return !shown[u"visible"].toBool(); }), 2);
    tick(QStringLiteral("InputList1.CheckBox1"), true);
    list({ QStringLiteral("1") });
    sent = query();
    EXPECT_TRUE(
        sent.value(0).endsWith(u"a.bill_code in ('1') and a.scan_site='北京'group by a.DISPATCH_SITE65 order by a.DISPATCH_SITE65"));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1);
    tick(QStringLiteral("InputList1.CheckBox1"), false);
    tick(QStringLiteral("RadioButton1"), true);
    const QString group = m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("DBComboBoxEh4") } })[u"items"]
                              .toArray()[1]
                              .toString();
    m_client.set(QStringLiteral("DBComboBoxEh4"), group);
    sent = query();
    EXPECT_TRUE(sent.value(0).contains(
        QString(u"b.site_name   where  and  exists(select /*+index(c,TAB_SITE_BASIC_P)*/ 1 from tab_site_basic c where "
                u"c.site_name =a.DISPATCH_SITE65  and c.CLASS_GROUP_NAME =  '"
            + group + u"' )   order by  area_name65")))
        << sent.value(0).toStdString();
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1);
    m_client.set(QStringLiteral("DBComboBoxEh3"), QStringLiteral("上海片区"));
    sent = query();
    EXPECT_TRUE(sent.value(0).contains(u"b.site_name  where b.area_name =  '上海片区' and  exists("));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }), QStringList());
}

TEST(AllScreens, OpenQueryAndCloseWithoutAnErrorThatIsNotTheirOwn)
{
    ClientProcess client;
    for (const char *name : { "ScanContrast", "GuestSignQuery", "AuditingQuery", "MonthSendBill", "MonthRecBill", "RecSendContrast",
             "ManCome", "ManSend", "BillStat", "BJDispFee", "DestQry", "SaleQry", "BillContrastScan", "BillContrastSiteCome",
             "SendNextUnCome", "DispFeeQry1", "ComeDispContrast", "MonthCalc" }) {
        const QString form = u"frm_" + QString::fromLatin1(name);
        EXPECT_EQ(client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString(form + u"111") } })[u"form"].toString(), form);
        if (form != u"frm_BillStat")
            client.obey(QStringLiteral("query"));
        EXPECT_TRUE(client.obey(QStringLiteral("close"))[u"closed"].toBool()) << name;
    }
    EXPECT_EQ(client.events(QStringLiteral("error")).size(), 0);
    EXPECT_EQ(client.quit(), 0);
}

} // namespace
