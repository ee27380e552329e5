#include "tests/screens/screen_test.h"

namespace {

const QString sourceColumns = QStringLiteral(
    "a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,a.SCAN_MAN_CODE,a.REGISTER_DATE,"
    "a.DISPATCH_OR_SEND_MAN,a.SEND_SITE,a.PRE_OR_NEXT_STATION,a.DISPATCH_SITE,a.PIECE,a.WEIGHT,a.CLASS,a.GOODS_TYPE,a.FAST_TYPE,"
    "a.TRANSFER_OR_DISPATCH_FEE,a.other_fee,a.REMARK,nvl(b.TOPAYMENT,0) as TOPAYMENT from ");
const QString targetColumns = QStringLiteral(
    "c.bill_code,c.SUB_BILL_CODE,c.OWNER_BAG_NO,c.SCAN_TYPE,c.SCAN_SITE,c.SCAN_DATE,c.SCAN_MAN,c.SCAN_MAN_CODE,c.REGISTER_DATE,"
    "c.DISPATCH_OR_SEND_MAN,c.SEND_SITE,c.PRE_OR_NEXT_STATION,c.DISPATCH_SITE,c.PIECE,c.WEIGHT,c.CLASS,c.GOODS_TYPE,c.FAST_TYPE,"
    "c.TRANSFER_OR_DISPATCH_FEE,c.other_fee,c.REMARK,nvl(b.TOPAYMENT,0) as TOPAYMENT from ");
const QString sourceJoin = QStringLiteral(" a left join tab_bill b on a.bill_code=b.bill_code ");
const QString targetJoin = QStringLiteral(" c left join tab_bill b on c.bill_code=b.bill_code ");
const QString sourceRange = QStringLiteral("where a.scan_date between to_date('2026-03-14 12:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                           "to_date('2026-03-15 11:59:59','yyyy-mm-dd hh24:mi:ss') and a.scan_site='北京'");
const QString targetRange = QStringLiteral("where c.scan_date between to_date('2026-03-14 12:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                           "to_date('2026-03-15 11:59:59','yyyy-mm-dd hh24:mi:ss') and c.scan_site='北京'");

/// The three statements that compare source table S (range index HS, further conditions MS) with T (HT, MT).
QStringList statements(const QString &S, const QString &HS, const QString &MS, const QString &T, const QString &HT, const QString &MT)
{
    const QString source = u"select /*+index(a," + HS + u")*/" + sourceColumns + S + sourceJoin + sourceRange + MS;
    const QString target = u"select /*+index(c," + HT + u")*/" + targetColumns + T + targetJoin + targetRange + MT;
    const QString inTarget
        = u"exists(select /*+index(c," + T + u"_I)*/1 from " + T + u" c " + targetRange + MT + u" and c.bill_code=a.bill_code)";
    const QString inSource
        = u"exists(select /*+index(a," + S + u"_I)*/1 from " + S + u" a " + sourceRange + MS + u" and a.bill_code=c.bill_code)";
    return { source + u" and " + inTarget + u" order by a.bill_code", source + u" and (not " + inTarget + u") order by a.bill_code",
        target + u" and (not " + inSource + u") order by c.bill_code" };
}

const QString come = QStringLiteral("TAB_SCAN_COME");
const QString comeRange = QStringLiteral("TAB_SCAN_COME_I3");

class ScanContrast : public ScreenTest {
protected:
    ScanContrast()
        : ScreenTest(QStringLiteral("frm_ScanContrast"))
    {
    }
};

TEST_F(ScanContrast, OpensWithANoonToNoonDayAndTheLoginSite)
{
    const std::pair<const char *, const char16_t *> defaults[] = {
        { "DBLookupComboboxEh5", u"北京" },
        { "DBLookupComboboxEh1", u"" },
        { "DBLookupComboboxEh2", u"到件" },
        { "DBComboBoxEh1", u"全部" },
        { "DBLookupComboboxEh3", u"" },
        { "DBComboBoxEh4", u"全部" },
        { "DBLookupComboboxEh10", u"" },
        { "DBDateTimeEditEh1", u"2026-03-14 12:00:00" },
        { "DBDateTimeEditEh2", u"2026-03-15 11:59:59" },
        { "DBLookupComboboxEh4", u"北京" },
        { "DBLookupComboboxEh6", u"" },
        { "DBLookupComboboxEh7", u"到件" },
        { "DBComboBoxEh2", u"全部" },
        { "DBLookupComboboxEh8", u"" },
        { "DBComboBoxEh3", u"全部" },
        { "DBLookupComboboxEh9", u"" },
        { "DBDateTimeEditEh3", u"2026-03-14 12:00:00" },
        { "DBDateTimeEditEh4", u"2026-03-15 11:59:59" },
    };
    for (const auto &[control, text] : defaults)
        EXPECT_EQ(m_client.textOf(QString::fromLatin1(control)), QString::fromUtf16(text)) << control;
    EXPECT_TRUE(m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("CheckBox1") } })[u"checked"].toBool());
}

TEST_F(ScanContrast, AtItsDefaultsEveryWaybillIsInBothSets)
{
    EXPECT_EQ(query(), statements(come, comeRange, {}, come, comeRange, {}));
    EXPECT_EQ(happened(QStringLiteral("statement"), { QStringLiteral("dataset"), QStringLiteral("connection") }),
        QStringList({ QStringLiteral("cds|host"), QStringLiteral("cds1|host"), QStringLiteral("cds2|host") }));
    EXPECT_EQ(
        happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList({ QStringLiteral("102"), QStringLiteral("0") }));
    EXPECT_GT(rowCount(QStringLiteral("DataView1")), 0);
    EXPECT_EQ(rowCount(QStringLiteral("DataView2")), 0);
    EXPECT_EQ(rowCount(QStringLiteral("DataView3")), 0);
}

TEST_F(ScanContrast, EachConditionAddsItsFragment)
{
    struct Condition {
        const char *control;
        const char16_t *value;
        const char16_t *source;
        const char16_t *target;
    };
    const Condition conditions[] = {
        { "DBLookupComboboxEh1", u"上海", u" and a.PRE_OR_NEXT_STATION='上海'", u"" },
        { "DBLookupComboboxEh3", u"某人", u" and a.scan_man='某人'", u"" },
        { "DBComboBoxEh4", u"航班", u" and a.class='航班'", u"" },
        { "DBComboBoxEh1", u"文件", u" and a.GOODS_TYPE='文件'", u"" },
        { "DBLookupComboboxEh10", u"某甲", u" and a.DISPATCH_OR_SEND_MAN='某甲'", u"" },
        { "DBLookupComboboxEh6", u"上海", u"", u" and c.PRE_OR_NEXT_STATION='上海'" },
        { "DBLookupComboboxEh8", u"某人", u"", u" and c.scan_man='某人'" },
        { "DBComboBoxEh3", u"航班", u"", u" and c.class='航班'" },
        { "DBComboBoxEh2", u"", u"", u" and c.GOODS_TYPE=''" },
        { "DBLookupComboboxEh9", u"某甲", u"", u" and c.DISPATCH_OR_SEND_MAN='某甲'" },
    };
    QString source;
    QString target;
    for (const Condition &condition : conditions) {
        const QString control = QString::fromLatin1(condition.control);
        const QString before = m_client.textOf(control);
        m_client.set(control, QString::fromUtf16(condition.value));
        EXPECT_EQ(query(),
            statements(come, comeRange, QString::fromUtf16(condition.source), come, comeRange, QString::fromUtf16(condition.target)))
            << condition.control;
        m_client.set(control, before);
        source += QString::fromUtf16(condition.source);
        target += QString::fromUtf16(condition.target);
    }
    for (const Condition &condition : conditions)
        m_client.set(QString::fromLatin1(condition.control), QString::fromUtf16(condition.value));
    EXPECT_EQ(query(), statements(come, comeRange, source, come, comeRange, target));
}

TEST_F(ScanContrast, OtherKindsOfScansNameTheirTypeAndRangeIndex)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh2"), QStringLiteral("留仓"));
    m_client.set(QStringLiteral("DBLookupComboboxEh7"), QStringLiteral("发件"));
    EXPECT_EQ(query(),
        statements(QStringLiteral("TAB_SCAN_OTHER"), QStringLiteral("TAB_SCAN_OTHER_P"), QStringLiteral(" and a.scan_type='留仓'"),
            QStringLiteral("TAB_SCAN_SEND"), QStringLiteral("TAB_SCAN_SEND_I3"), {}));
}

TEST_F(ScanContrast, ArrivalsAgainstSendOutsFillAllThreePagesAndTheFootersAddUp)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh7"), QStringLiteral("发件"));
    query();
    for (const auto &[sheet, view] :
        { std::pair("TabSheet2", "DataView1"), std::pair("TabSheet1", "DataView2"), std::pair("TabSheet3", "DataView3") }) {
        m_client.obey(QStringLiteral("page"), { { QStringLiteral("control"), QString::fromLatin1(sheet) } });
        const QString name = QString::fromLatin1(view);
        const QJsonArray shown = rows(name)[u"rows"].toArray();
        const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), name } })[u"columns"].toArray();
        const QJsonArray footers
            = m_client.obey(QStringLiteral("footer"), { { QStringLiteral("view"), name }, { QStringLiteral("exact"), true } })[u"rows"]
                  .toArray();
        ASSERT_GT(shown.size(), 0) << view;
        EXPECT_EQ(footers[0][0].toString(), QStringLiteral("记录数"));
        EXPECT_EQ(footers[1][0].toString().toInt(), shown.size());
        int weighed = -1;
        for (int column = 0; column < columns.size(); ++column)
            if (columns[column][u"field"].toString() == u"WEIGHT")
                weighed = column;
        ASSERT_GE(weighed, 0);
        qint64 hundredths = 0;
        for (const QJsonValue &row : shown)
            hundredths += qRound64(row[weighed].toString().toDouble() * 100);
        EXPECT_EQ(footers[0][weighed].toString(), QStringLiteral("总重量"));
        EXPECT_EQ(qRound64(footers[1][weighed].toString().toDouble() * 100), hundredths);
    }
}

TEST_F(ScanContrast, WithTheComparisonOffOnlyTheSourceIsListedAndTheOtherPagesStay)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh7"), QStringLiteral("发件"));
    query();
    const int onlySource = rowCount(QStringLiteral("DataView2"));
    tick(QStringLiteral("CheckBox1"), false);
    EXPECT_FALSE(m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("DBLookupComboboxEh4") } })[u"enabled"]
                     .toBool());
    EXPECT_EQ(query(),
        QStringList(u"select /*+index(a,TAB_SCAN_COME_I3)*/" + sourceColumns + come + sourceJoin + sourceRange + u" order by a.bill_code"));
    EXPECT_EQ(rowCount(QStringLiteral("DataView2")), onlySource);
}

TEST_F(ScanContrast, RefusesWithTextTitleAndFocusAndShowsTheFirstPage)
{
    struct Refusal {
        const char *control;
        const char16_t *value;
        bool comparing;
        const char16_t *message;
        const char *focus;
    };
    const Refusal refusals[] = {
        { "DBLookupComboboxEh5", u"", true, u"详细：扫描网点必须选择！|总部扫描监控|48", "DBLookupComboboxEh5" },
        { "DBLookupComboboxEh2", u"", true, u"详细：扫描类型必须选择！|总部扫描监控|48", "DBLookupComboboxEh2" },
        { "DBLookupComboboxEh4", u"", true, u"详细：扫描网点必须选择！|总部扫描监控|48", "DBLookupComboboxEh4" },
        { "DBLookupComboboxEh7", u"", true, u"详细：扫描类型必须选择！|总部扫描监控|48", "DBLookupComboboxEh7" },
        { "DBDateTimeEditEh1", u"2026-03-12 11:59:58", true, u"详细：结束日期不能超过开始日期\"3\"天！|日期时间错误|48", "" },
        { "DBDateTimeEditEh4", u"2026-03-14 11:59:59", false, u"详细：结束日期不能比开始日期还早！|日期时间错误|48", "" },
        { "DBDateTimeEditEh3", u"昨天", true, u"详细：您所输入的日期时间错误！|日期时间格式|48", "" },
    };
    for (const Refusal &refusal : refusals) {
        const QString control = QString::fromLatin1(refusal.control);
        const QString before = m_client.textOf(control);
        m_client.set(control, QString::fromUtf16(refusal.value));
        tick(QStringLiteral("CheckBox1"), refusal.comparing);
        m_client.obey(QStringLiteral("page"), { { QStringLiteral("control"), QStringLiteral("TabSheet3") } });
        EXPECT_EQ(query(), QStringList()) << refusal.control;
        EXPECT_EQ(messages(), QStringList(QString::fromUtf16(refusal.message)));
        QStringList focused { QStringLiteral("WorkPanel1") };
        if (*refusal.focus)
            focused.append(QString::fromLatin1(refusal.focus));
        EXPECT_EQ(happened(QStringLiteral("focus"), { QStringLiteral("control") }), focused);
        EXPECT_EQ(happened(QStringLiteral("cursor"), { QStringLiteral("number") }).last(), QStringLiteral("0"));
        EXPECT_EQ(pageIndex(), 0);
        tick(QStringLiteral("CheckBox1"), true);
        m_client.set(control, before);
    }
}

TEST_F(ScanContrast, LeavingASiteComboCompletesACodeAndEmptiesNonsense)
{
    const QString site = QStringLiteral("DBLookupComboboxEh5");
    m_client.events();
    m_client.set(site, QStringLiteral("没有的网点"));
    EXPECT_EQ(m_client.textOf(site), QString());
    EXPECT_EQ(m_client.events(QStringLiteral("focus")).last()[u"control"].toString(), site);
    m_client.set(site, QStringLiteral("北京"));
    EXPECT_EQ(m_client.textOf(site), QStringLiteral("北京"));
}

TEST_F(ScanContrast, AQuoteInAConditionIsTheDatabasesToRefuseAndTheScreenLives)
{
    query();
    const int before = rowCount(QStringLiteral("DataView1"));
    m_client.set(QStringLiteral("DBLookupComboboxEh3"), QStringLiteral("O'Neill"));
    EXPECT_EQ(query().size(), 1);
    EXPECT_EQ(happened(QStringLiteral("error"), { QStringLiteral("text") }).size(), 1);
    EXPECT_EQ(happened(QStringLiteral("cursor"), { QStringLiteral("number") }).last(), QStringLiteral("0"));
    EXPECT_EQ(rowCount(QStringLiteral("DataView1")), 0); // cds was closed for the query and stays closed

    m_client.set(QStringLiteral("DBLookupComboboxEh3"), QString());
    query();
    EXPECT_EQ(rowCount(QStringLiteral("DataView1")), before);
}

TEST_F(ScanContrast, ClosingTellsTheHostAndForgetsTheScreen)
{
    m_client.events();
    m_client.obey(QStringLiteral("close"));
    const QJsonArray performed = m_client.events(QStringLiteral("perform"));
    ASSERT_EQ(performed.size(), 1);
    EXPECT_EQ(performed[0][u"message"].toInt(), 1125);
    EXPECT_TRUE(m_client.obey(QStringLiteral("forms"))[u"forms"].toArray().isEmpty());
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ScanContrast111") } });
    QList<int> messages;
    for (const QJsonValue &event : m_client.events(QStringLiteral("perform")))
        messages.append(event[u"message"].toInt());
    EXPECT_EQ(messages, QList<int>({ 1127, 1124 }));
}

} // namespace
