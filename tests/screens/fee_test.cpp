// The screens that count volumes and compare fees: monthly volumes, dispatch fees and audited transfer fees.

#include "tests/screens/screen_test.h"

namespace {

const QString yesterday = QStringLiteral(" between to_date('2026-03-14 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                         "to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss')");

class MonthCalc : public ScreenTest {
protected:
    MonthCalc()
        : ScreenTest(QStringLiteral("frm_MonthCalc"), { QStringLiteral("--login-site"), QStringLiteral("广东中心") })
    {
    }
};

TEST_F(MonthCalc, CountsTheHandOversOfOneFinanceCentre)
{
    const auto statement = [](const QString &station) -> QString {
        return u" select /*+index(a,TAB_ACCOUNT_LIST_I6)*/ a.PRE_STATION,count(1) as bill_count  from tab_account_list a  where "
               "a.create_date"
            + yesterday + u" and a.pre_finance_center='广东中心'" + station + u" group by a.PRE_STATION ";
    };
    EXPECT_EQ(query(), QStringList(statement({})));
    EXPECT_EQ(footer(QStringLiteral("DataView2"), QStringLiteral("bill_count")),
        answerOf(u"select count(*) from tab_account_list where pre_finance_center='广东中心' and create_date" + yesterday));
    m_client.set(QStringLiteral("DBLookupComboboxEh4"), QStringLiteral("香港"));
    EXPECT_EQ(query(), QStringList(statement(QStringLiteral(" and a.PRE_STATION ='香港'"))));
    EXPECT_LE(rowCount(QStringLiteral("DataView2")), 1);
    EXPECT_FALSE(
        m_client
            .ask({ { QStringLiteral("do"), QStringLiteral("page") }, { QStringLiteral("control"), QStringLiteral("TabSheet2") } })[u"ok"]
            .toBool())
        << "the detail has no tab";
    expectRangeRefusals(31);
}

class DispFee : public ScreenTest {
protected:
    explicit DispFee(const QString &site = QStringLiteral("北京"))
        : ScreenTest(QStringLiteral("frm_DispFeeQry1"), { QStringLiteral("--login-site"), site })
    {
    }
    const QString m_summary = QStringLiteral("DataView1");
    const QString m_details = QStringLiteral("DataView2");
};

TEST_F(DispFee, TheClickedCellChoosesWhatTheDetailShowsAndItAddsUp)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14" }, { "DBDateTimeEditEh2", u"2026-03-14" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBComboBoxEh4", u"全部" } });
    EXPECT_EQ(query(),
        QStringList(u" select /*index(a,TAB_SIGN_SUM_I)*/ a.RECORD_SITE,'' as type,'' as REC_SITE,  sum(case when (b.province='北京') then "
                    "a.BILL_COUNT else 0 end) as BILL_COUNT, sum(case when (b.province<>'北京' ) then a.BILL_COUNT else 0 end) as "
                    "BILL_COUNT1,  sum(case when (b.province='北京') then a.dispatch_fee else 0 end ) as dispatch_fee,  sum(case when "
                    "(b.province<>'北京') then a.dispatch_fee else 0 end) as dispatch_fee1  from TAB_SIGN_SUM a inner join tab_site b on "
                    "a.rec_site=b.site_name  where a.sign_date"
            + yesterday + u" and a.RECORD_SITE='北京'group by a.RECORD_SITE "));
    ASSERT_EQ(rowCount(m_summary), 1);
    const auto count = [this](const QString &field) { return column(m_summary, field).value(0).toInt(); };
    const QString head = u"select /*index(a,TAB_SIGN_I2)*/ a.* from tab_sign a where a.sign_date" + yesterday
        + u" and a.RECORD_SITE='北京' and a.SIGN_SITE_CENTER is not null ";
    QStringList sent = doubleClick(m_summary, 0, QStringLiteral("BILL_COUNT"));
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(sent[0].startsWith(head + u" and a.REC_SITE in ('")) << sent[0].toStdString();
    EXPECT_EQ(rowCount(m_details), count(QStringLiteral("BILL_COUNT")));
    EXPECT_EQ(
        footer(m_details, QStringLiteral("DISPATCH_FEE")).toDouble(), column(m_summary, QStringLiteral("DISPATCH_FEE"))[0].toDouble());
    page(QStringLiteral("TabSheet1"));
    sent = doubleClick(m_summary, 0, QStringLiteral("BILL_COUNT1"));
    ASSERT_EQ(sent.size(), 1) << "another column of the same row";
    EXPECT_TRUE(sent[0].startsWith(head + u" and a.REC_SITE not in ('")) << sent[0].toStdString();
    EXPECT_EQ(rowCount(m_details), count(QStringLiteral("BILL_COUNT1")));
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(page(QStringLiteral("TabSheet2")), QStringList());
    page(QStringLiteral("TabSheet1"));
    EXPECT_EQ(doubleClick(m_summary, 0, QStringLiteral("RECORD_SITE")), QStringList(head));
}

TEST_F(DispFee, ByProvinceTheResultIsFilteredAndTheFilterStaysOnForTheOtherMode)
{
    tick(QStringLiteral("CheckBox1"), false);
    const QStringList sent = query();
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(
        sent[0].startsWith(u" select  a.RECORD_SITE,a.REC_SITE,a.type,sum(a.BILL_COUNT) as BILL_COUNT, sum(a.BILL_COUNT1) as "
                           "BILL_COUNT1 ,sum(a.dispatch_fee) as dispatch_fee, sum(a.dispatch_fee1) as dispatch_fee1   from (  select "
                           "/*index(a,TAB_SIGN_SUM_I)*/ a.RECORD_SITE,a.REC_SITE, case when (b.province='北京') then '同省' else '外省' "
                           "end  as type, case when (b.province='北京') then a.BILL_COUNT else 0 end  as BILL_COUNT, case when "));
    EXPECT_TRUE(sent[0].endsWith(u" inner join tab_site c  on a.record_site=c.site_name  where a.sign_date" + yesterday
        + u" and a.RECORD_SITE='北京' )a group by a.RECORD_SITE,a.REC_SITE,a.type "));
    const int all = rowCount(m_summary);
    m_client.set(QStringLiteral("DBComboBoxEh4"), QStringLiteral("外省"));
    query();
    const QStringList types = column(m_summary, QStringLiteral("type"));
    EXPECT_TRUE(types.size() < all && !types.isEmpty() && types.count(QStringLiteral("外省")) == types.size());
    EXPECT_EQ(
        happened(QStringLiteral("filter"), { QStringLiteral("text"), QStringLiteral("on") }).last(), QStringLiteral("type= '外省'|true"));
    tick(QStringLiteral("CheckBox1"), true);
    query();
    EXPECT_EQ(rowCount(m_summary), 0) << "its rows have no type, and the filter is still on";
}

TEST_F(DispFee, RefusesAnotherProvinceAndSendsAnEmptyStatementAfterABadRange)
{
    query();
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("上海静安"));
    expectRefusal(QStringLiteral("详细：所选的派件站点与登录站点不在同一个省份!|内派费查询|48"));
    EXPECT_EQ(rowCount(m_summary), 1);
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QStringLiteral("北京"));
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-15"));
    EXPECT_EQ(query(), QStringList(QString()));
    EXPECT_EQ(messages(), QStringList(QStringLiteral("详细：结束日期不能比开始日期还早！|日期时间错误|48")));
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1);
}

class AuditingQuery : public ScreenTest {
protected:
    AuditingQuery()
        : ScreenTest(QStringLiteral("frm_AuditingQuery"))
    {
    }
    static QString statement(const QString &hint, const QString &blanks, const QString &where)
    {
        return u"select b.area_name,a.* from (select /*+index(a," + hint + u")*/a.PRE_OR_NEXT_STATION," + blanks
            + u"sum(nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 end,0)) as WEIGHT, count(a.BILL_CODE) as bill_count,"
              "sum(nvl(TRANSFER_OR_DISPATCH_FEE,0)) as  TRANSFER_OR_DISPATCH_FEE, sum(a.NET_MANAGE_FEE) as aduiting_FEE , "
              "(sum(nvl(TRANSFER_OR_DISPATCH_FEE,0))-sum(a.NET_MANAGE_FEE)) as sum_fee  from tab_scan_come a "
            + where
            + u" group by a.PRE_OR_NEXT_STATION) a left join tab_site b on a.PRE_OR_NEXT_STATION=b.site_name order by "
              "b.area_name,a.PRE_OR_NEXT_STATION";
    }
};

TEST_F(AuditingQuery, ComparesFeesByStationAndTheDetailAddsUpToTheCent)
{
    const QString where = u" where a.scan_date" + yesterday + u" and a.scan_site='北京'";
    const auto expected
        = [&](const QString &added) { return statement(QStringLiteral("TAB_SCAN_COME_P"), QStringLiteral("  "), where + added); };
    EXPECT_EQ(query(), QStringList(expected({})));
    const QString summary = QStringLiteral("DataView2");
    const QString details = QStringLiteral("DataView1");
    const QStringList stations = column(summary, QStringLiteral("PRE_OR_NEXT_STATION"));
    ASSERT_GT(stations.size(), 1);
    const QStringList sent = doubleClick(summary, 0, QStringLiteral("bill_count"));
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(sent[0].endsWith(u"DISPATCH_OR_SEND_MAN2       from tab_scan_come a  " + where + u"and PRE_OR_NEXT_STATION= '" + stations[0]
        + u"'  order by a.scan_site,a.PRE_OR_NEXT_STATION"))
        << sent[0].toStdString();
    page(QStringLiteral("TabSheet1"));
    expectEveryDetailAddsUp(summary, details, QStringLiteral("bill_count"), { { "TRANSFER_OR_DISPATCH_FEE", "TRANSFER_OR_DISPATCH_FEE" } });
    expectConditions({ { "DBLookupComboboxEh5", u"上海中心", u" and a.PRE_OR_NEXT_STATION='上海中心'" },
                         { "DBComboBoxEh4", u"班车", u" and a.class='班车'" }, { "DBComboBoxEh1", u"", u" and a.GOODS_TYPE=''" },
                         { "DBComboBoxEh2", u"陆运件", u" and a.FAST_TYPE='陆运件'" },
                         { "DBLookupComboboxEh1", u"随便什么", u" and a.SEND_SITE='随便什么'" }, // no exit handler checks it
                         { "DBLookupComboboxEh4", u"上海静安", u" and a.DISPATCH_SITE='上海静安'" } },
        expected);
    m_client.set(QStringLiteral("DBLookupComboboxEh3"), QString());
    EXPECT_EQ(m_client.textOf(QStringLiteral("DBLookupComboboxEh3")), QStringLiteral("北京"));
    expectRangeRefusals(31);
}

TEST_F(AuditingQuery, AListAsksForTheLoginSite)
{
    const QString bill = answerOf(QStringLiteral("select min(bill_code) from tab_scan_come where scan_site='北京'"));
    tick(QStringLiteral("InputList1.CheckBox1"), true);
    list({ bill });
    const QString where = u" where a.bill_code in ('" + bill + u"') and a.scan_site='北京'";
    EXPECT_EQ(query(), QStringList(statement(QStringLiteral("TAB_SCAN_COME_I"), QStringLiteral("   "), where)));
    const QStringList sent = page(QStringLiteral("TabSheet2"));
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(sent[0].contains(QString(u"DISPATCH_OR_SEND_MAN2    from tab_scan_come a " + where + u" and PRE_OR_NEXT_STATION='")))
        << sent[0].toStdString();
    EXPECT_GT(rowCount(QStringLiteral("DataView1")), 0);
}

} // namespace
