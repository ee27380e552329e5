// The two screens that compare entered waybills with scans.

#include "tests/screens/screen_test.h"

namespace {

QString between(const QString &column)
{
    return u"where " + column
        + u" between to_date('2026-03-14 00:00:00','yyyy-mm-dd hh24:mi:ss') and to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss')";
}

const QString noInnerNumbers = QStringLiteral(" and (REGEXP_INSTR(a.bill_code,'^((1)[0-9]{7})$|^([A-Za-z]{1}[0-9]{7})$',1,1)=0) ");

QString billsWithoutScan(const QString &sender, const QString &table, const QString &scan)
{
    return u"select a.* from (select /*+index(a,TAB_BILL_I)*/a.*,'' as sub_bill_code from tab_bill a "
        + between(QStringLiteral("a.send_date")) + sender + u" and (not exists(select /*+index(b," + table + u"_I)*/1 from " + table
        + u" b where b.bill_code=a.bill_code" + scan + u"))) a order by a.bill_code,a.sub_bill_code desc";
}

QString scansWithoutBill(const QString &table, const QString &conditions)
{
    return u"select /*+index(a," + table
        + u"_I3)*/ a.bill_code,a.SUB_BILL_CODE, a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,"
          "a.REGISTER_DATE,a.DISPATCH_OR_SEND_MAN,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,a.CLASS,a.GOODS_TYPE,a.PIECE,a.WEIGHT,"
          "a.FAST_TYPE,a.REMARK , (select /*+index(c,TAB_SCAN_COME_I)*/ c.PRE_OR_NEXT_STATION  from tab_scan_come c  where "
          "c.bill_code=a.bill_code and c.SCAN_SITE in ('北京','北京市内部','北京贷款') and c.SCAN_DATE=(select "
          "/*+index(b,TAB_SCAN_COME_I)*/ max(b.scan_date) from tab_scan_come b where  b.bill_code=c.bill_code and b.SCAN_SITE in "
          "('北京','北京市内部','北京贷款') ) and rownum=1 )as send_site   from "
        + table + u" a " + between(QStringLiteral("a.scan_date")) + conditions
        + u" and (not exists(select /*+index(b,TAB_BILL_P)*/1 from tab_bill b where b.bill_code=a.bill_code))" + noInnerNumbers
        + u" order by a.bill_code,a.sub_bill_code desc";
}

class BillContrastScan : public ScreenTest {
protected:
    BillContrastScan()
        : ScreenTest(QStringLiteral("frm_BillContrastScan"))
    {
    }
    void choose(int item)
    {
        m_client.obey(
            QStringLiteral("set"), { { QStringLiteral("control"), QStringLiteral("RadioGroup1") }, { QStringLiteral("itemIndex"), item } });
    }
    bool isShown(const QString &control)
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[u"visible"].toBool();
    }
    QString caption(const QString &control)
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[u"caption"].toString();
    }
};

TEST_F(BillContrastScan, ScansWithoutAWaybillAreTheSecondPagesQuestion)
{
    expectDefaults({ { "DBDateTimeEditEh1", u"2026-03-14 00:00:00" }, { "DBDateTimeEditEh2", u"2026-03-14 23:59:59" },
        { "DBLookupComboboxEh5", u"北京" }, { "DBComboBoxEh1", u"收件" }, { "DBLookupComboboxEh1", u"北京" },
        { "DBLookupComboboxEh2", u"" } });
    page(QStringLiteral("TabSheet2"));
    EXPECT_EQ(query(),
        QStringList(scansWithoutBill(QStringLiteral("TAB_SCAN_REC"), QStringLiteral(" and a.scan_site='北京' and a.scan_type='收件'"))));
    choose(1);
    EXPECT_TRUE(isShown(QStringLiteral("DBLookupComboboxEh2")) && !isShown(QStringLiteral("DBLookupComboboxEh1")));
    EXPECT_EQ(caption(QStringLiteral("GroupBox1")), QStringLiteral("扫描时间范围(3天以内)"));
    m_client.set(QStringLiteral("DBComboBoxEh1"), QStringLiteral("到件"));
    const QString arrivals
        = scansWithoutBill(QStringLiteral("TAB_SCAN_COME"), QStringLiteral(" and a.scan_site='北京' and a.scan_type='到件'"));
    EXPECT_EQ(query(), QStringList(arrivals));
    const QStringList bills = column(QStringLiteral("DataView1"), QStringLiteral("BILL_CODE"));
    ASSERT_GT(bills.size(), 0);
    for (const QString &bill : bills)
        EXPECT_EQ(answerOf(u"select count(*) from tab_bill where bill_code='" + bill + u'\''), QStringLiteral("0"));
    m_client.set(QStringLiteral("DBLookupComboboxEh2"), QStringLiteral("上海中心"));
    EXPECT_EQ(query(), QStringList(u" select a.* from (" + arrivals + u") a where a.send_site='上海中心'"));
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QString());
    m_client.set(QStringLiteral("DBLookupComboboxEh2"), QString());
    m_client.set(QStringLiteral("DBComboBoxEh1"), QStringLiteral("留仓"));
    EXPECT_EQ(query(), QStringList(scansWithoutBill(QStringLiteral("TAB_SCAN_OTHER"), QStringLiteral(" and a.scan_type='留仓'"))));
    expectRangeRefusals(3);
    EXPECT_EQ(pageIndex(), 1) << "a query leaves its page in front";
}

TEST_F(BillContrastScan, WaybillsWithoutAScanAreTheFirstPagesQuestion)
{
    choose(0);
    EXPECT_TRUE(isShown(QStringLiteral("DBLookupComboboxEh1")) && !isShown(QStringLiteral("DBLookupComboboxEh2")));
    EXPECT_EQ(caption(QStringLiteral("GroupBox1")), QStringLiteral("寄件日期范围(3天以内)"));
    m_client.set(QStringLiteral("DBComboBoxEh1"), QStringLiteral("派件"));
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QString());
    const QString disp = QStringLiteral("TAB_SCAN_DISP");
    EXPECT_EQ(query(), QStringList(billsWithoutScan({}, disp, QStringLiteral(" and b.scan_site='北京' and b.scan_type='派件'"))));
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QStringLiteral("北京海淀"));
    EXPECT_EQ(query(),
        QStringList(billsWithoutScan(QStringLiteral(" and a.send_site='北京海淀'"), disp, QStringLiteral(" and b.scan_type='派件'"))));
    const QStringList bills = column(QStringLiteral("DataView2"), QStringLiteral("BILL_CODE"));
    ASSERT_GT(bills.size(), 0);
    for (const QString &bill : bills)
        EXPECT_EQ(answerOf(u"select count(*) from tab_scan_disp where bill_code='" + bill + u'\''), QStringLiteral("0"));
}

class BillContrastSiteCome : public ScreenTest {
protected:
    BillContrastSiteCome()
        : ScreenTest(QStringLiteral("frm_BillContrastSiteCome"), { QStringLiteral("--login-site"), QStringLiteral("北京海淀") })
    {
    }
    static QString statement(const QString &destination, const QString &conditions)
    {
        return u"select a.* from (select /*+index(a,TAB_BILL_I)*/a.*,'' as sub_bill_code," + destination
            + u" as SCAN_DISPATCH_SITE from tab_bill a " + between(QStringLiteral("a.send_date")) + conditions
            + u") a order by a.send_site,a.bill_code,a.sub_bill_code desc";
    }
    const QString received
        = QStringLiteral("(select /*+index(c,TAB_SCAN_COME_I)*/c.scan_site from TAB_SCAN_COME c where c.bill_code=a.bill_code and "
                         "c.scan_date=(select /*+index(d,TAB_SCAN_COME_I)*/max(d.scan_date) from TAB_SCAN_COME d where "
                         "d.bill_code=c.bill_code and d.scan_type='接件') and c.scan_type='接件' and rownum=1)");
    const QString sentTo
        = QStringLiteral("(select /*+index(c,TAB_SCAN_SEND_I)*/c.PRE_OR_NEXT_STATION from TAB_SCAN_SEND c where c.bill_code=a.bill_code "
                         "and c.scan_date=(select /*+index(d,TAB_SCAN_SEND_I)*/max(d.scan_date) from TAB_SCAN_SEND d where "
                         "d.bill_code=c.bill_code and d.scan_type='出库') and c.scan_type='出库' and rownum=1)");
};

TEST_F(BillContrastSiteCome, RowsWhoseDestinationsDifferAreRed)
{
    const QString site = QStringLiteral(" and a.send_site='北京海淀'");
    EXPECT_EQ(query(), QStringList(statement(received, site)));
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-12 00:00:00"));
    query();
    const QString view = QStringLiteral("DataView2");
    const QStringList written = column(view, QStringLiteral("DISPATCH_SITE"));
    const QStringList scanned = column(view, QStringLiteral("SCAN_DISPATCH_SITE"));
    bool same = false;
    for (int row = 0; row < int(written.size()); ++row) {
        const QString colour = m_client
                                   .obey(QStringLiteral("colour"),
                                       { { QStringLiteral("view"), view }, { QStringLiteral("row"), row },
                                           { QStringLiteral("field"), QStringLiteral("BILL_CODE") } })[u"colour"]
                                   .toString();
        EXPECT_EQ(colour == u"#ff0000", written[row] != scanned[row]) << row;
        same = same || written[row] == scanned[row];
    }
    EXPECT_TRUE(same) << "every row is red";
    m_client.obey(
        QStringLiteral("set"), { { QStringLiteral("control"), QStringLiteral("RadioGroup1") }, { QStringLiteral("itemIndex"), 1 } });
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-14 00:00:00"));
    EXPECT_EQ(query(), QStringList(statement(sentTo, site)));
}

TEST_F(BillContrastSiteCome, EachConditionAddsItsFragmentAndTheExpressTypeGoesByItsItem)
{
    const QString all = QStringLiteral(" and a.send_site='北京海淀'");
    const auto expected = [&](const QString &added) { return statement(received, all + added); };
    expectConditions({ { "DBLookupComboboxEh1", u"上海静安", u" and a.DISPATCH_SITE='上海静安'" },
                         { "DBComboBoxEh1", u"珠三角",
                             u" and a.send_site<>'香港' and a.DISPATCH_SITE<>'香港' and (exists(select /*+index(x,TAB_SITE_U)*/1 from "
                             u"tab_site x where x.site_name=a.send_site and x.type<>'直营网点') or exists(select "
                             u"/*+index(x,TAB_SITE_U)*/1 from tab_site x where x.site_name=a.DISPATCH_SITE and x.type<>'直营网点'))" },
                         { "DBComboBoxEh2", u"", u" and a.class=''" } },
        expected);
    m_client.set(QStringLiteral("DBLookupComboboxEh1"), QString());
    m_client.set(QStringLiteral("DBComboBoxEh2"), QStringLiteral("全部"));
    const std::pair<const char16_t *, const char16_t *> types[] = {
        { u"香港", u" and (a.send_site='香港' or a.DISPATCH_SITE='香港')" },
        { u"同城",
            u" and exists(select /*+index(x,TAB_SITE_U)*/1 from tab_site x where x.site_name=a.send_site and x.type='直营网点') and "
            u"exists(select /*+index(x,TAB_SITE_U)*/1 from tab_site x where x.site_name=a.DISPATCH_SITE and x.type='直营网点')" },
        { u"别的", u"" },
        { u"", u"" },
    };
    for (const auto &[type, fragment] : types) {
        m_client.set(QStringLiteral("DBComboBoxEh1"), QString::fromUtf16(type));
        EXPECT_EQ(query(), QStringList(expected(QString::fromUtf16(fragment))));
    }
    m_client.set(QStringLiteral("DBLookupComboboxEh5"), QString());
    EXPECT_EQ(query(), QStringList(statement(received, {})));
    expectRangeRefusals(3);
}

} // namespace
