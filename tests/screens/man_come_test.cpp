#include "tests/screens/screen_test.h"

namespace {

const QString range = QStringLiteral(" where a.scan_date between to_date('2026-03-15 00:00:00','yyyy-mm-dd hh24:mi:ss') and "
                                     "to_date('2026-03-15 23:59:59','yyyy-mm-dd hh24:mi:ss')");

const QString fortnight = QString(range).replace(QStringLiteral("2026-03-15 00"), QStringLiteral("2026-03-02 00"));

QString statistics(const QString &where, const QString &outer = {})
{
    return u"select a.* from (select /*+index(a,TAB_SCAN_COME_I3)*/ b.area_name,a.class,a.scan_man,sum(nvl(case when SUB_BILL_CODE is "
           "null then a.WEIGHT else 0 end,0)) as WEIGHT,count(a.BILL_CODE) as billcount  from tab_scan_come a left join tab_site b on "
           "a.pre_or_next_station=b.site_name"
        + where + u"group by b.area_name, a.class,a.scan_man) a" + outer;
}

QString detail(const QString &conditions)
{
    return u"select /*+index(a,TAB_SCAN_COME_I3)*/ a.*  from tab_scan_come a" + fortnight + u" and a.scan_site='北京'" + conditions
        + u"order by a.scan_site,a.PRE_OR_NEXT_STATION";
}

const QString summary = QStringLiteral("DataView2");
const QString details = QStringLiteral("DataView1");
const QString summarySheet = QStringLiteral("TabSheet1");
const QString detailSheet = QStringLiteral("TabSheet2");

class ManCome : public ScreenTest {
protected:
    ManCome()
        : ScreenTest(QStringLiteral("frm_ManCome"))
    {
    }
    void makeCurrent(int row)
    {
        m_client.obey(QStringLiteral("cell"),
            { { QStringLiteral("view"), summary }, { QStringLiteral("row"), row },
                { QStringLiteral("field"), QStringLiteral("scan_man") } });
    }
    static qint64 hundredths(const QString &number) { return qRound64(number.toDouble() * 100); }
};

TEST_F(ManCome, AtItsDefaultsItCountsTheLoginSitesDayAndTheFootersAddUp)
{
    const std::pair<const char *, const char16_t *> defaults[] = {
        { "DBDateTimeEditEh1", u"2026-03-15 00:00:00" },
        { "DBDateTimeEditEh2", u"2026-03-15 23:59:59" },
        { "DBComboBoxEh1", u"全部" },
        { "DBLookupComboboxEh5", u"" },
        { "DBComboBoxEh4", u"全部" },
        { "DBLookupComboboxEh1", u"北京" },
        { "DBLookupComboboxEh2", u"" },
    };
    for (const auto &[control, text] : defaults)
        EXPECT_EQ(m_client.textOf(QString::fromLatin1(control)), QString::fromUtf16(text)) << control;

    EXPECT_EQ(query(), QStringList(statistics(range + u" and a.scan_site='北京'")));
    EXPECT_EQ(
        happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList({ QStringLiteral("102"), QStringLiteral("0") }));
    const QStringList counts = column(summary, QStringLiteral("BILLCOUNT"));
    const QStringList weights = column(summary, QStringLiteral("WEIGHT"));
    ASSERT_GT(counts.size(), 5);
    qint64 count = 0;
    qint64 weight = 0;
    for (qsizetype row = 0; row < counts.size(); ++row) {
        count += counts[row].toInt();
        weight += hundredths(weights[row]);
    }
    EXPECT_EQ(footer(summary, QStringLiteral("BILLCOUNT")).toInt(), count);
    EXPECT_EQ(hundredths(footer(summary, QStringLiteral("WEIGHT"))), weight);
    EXPECT_EQ(footer(summary, QStringLiteral("area_name")), QString::number(counts.size()));
}

TEST_F(ManCome, EachConditionAddsItsFragment)
{
    struct Condition {
        const char *control;
        QString value;
        QString where;
        QString outer;
    };
    query();
    const QString man = column(summary, QStringLiteral("scan_man")).last();
    const QString byMan = u" and a.scan_man='" + man + u'\'';
    const Condition conditions[] = {
        { "DBLookupComboboxEh5", QStringLiteral("上海中心"), QStringLiteral(" and a.PRE_OR_NEXT_STATION='上海中心'"), {} },
        { "DBLookupComboboxEh2", man, byMan, {} },
        { "DBComboBoxEh4", QStringLiteral("航班"), QStringLiteral(" and a.class='航班'"), {} },
        { "DBComboBoxEh1", {}, {}, QStringLiteral(" where a.area_name=''") }, // a cleared list still asks
        { "DBComboBoxEh1", QStringLiteral("上海片区"), {}, QStringLiteral(" where a.area_name='上海片区'") },
    };
    const QString site = range + u" and a.scan_site='北京'";
    for (const Condition &condition : conditions) {
        const QString control = QString::fromLatin1(condition.control);
        const QString before = m_client.textOf(control);
        m_client.set(control, condition.value);
        EXPECT_EQ(query(), QStringList(statistics(site + condition.where, condition.outer))) << condition.control;
        m_client.set(control, before);
    }
    for (const Condition &condition : conditions)
        m_client.set(QString::fromLatin1(condition.control), condition.value);
    EXPECT_EQ(query(),
        QStringList(statistics(site + u" and a.PRE_OR_NEXT_STATION='上海中心'" + byMan + u" and a.class='航班'",
            QStringLiteral(" where a.area_name='上海片区'"))));
}

TEST_F(ManCome, TheDetailOfEveryRowAddsUpToItAndIsLoadedOncePerRow)
{
    m_client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-02 00:00:00"));
    query();
    const QStringList areas = column(summary, QStringLiteral("area_name"));
    const QStringList shifts = column(summary, QStringLiteral("CLASS"));
    const QStringList men = column(summary, QStringLiteral("scan_man"));
    const QStringList counts = column(summary, QStringLiteral("BILLCOUNT"));
    const qsizetype unknownArea = areas.lastIndexOf(QString());
    const qsizetype noShift = shifts.lastIndexOf(QString());
    ASSERT_TRUE(unknownArea >= 0 && noShift >= 0) << "the network has no row for the rules of empty values";
    for (const qsizetype row : { qsizetype(0), unknownArea, noShift, men.size() / 2, men.size() - 1 }) {
        const QString area = areas[row].isEmpty()
            ? QStringLiteral(" and not exists (select area_name from tab_site where site_name = a.pre_or_next_station ) ")
            : QString(u" and exists (select area_name from tab_site where site_name = a.pre_or_next_station and  area_name = '" + areas[row]
                + u"')");
        const QString shift
            = shifts[row].isEmpty() ? QStringLiteral(" and a.class is null ") : QString(u" and a.class='" + shifts[row] + u'\'');
        makeCurrent(int(row));
        EXPECT_EQ(page(detailSheet), QStringList(detail(u" and a.scan_man='" + men[row] + u'\'' + shift + area)));
        EXPECT_EQ(rowCount(details), counts[row].toInt()) << row;
        page(summarySheet);
        EXPECT_EQ(page(detailSheet), QStringList()) << "the second visit asks again";
        page(summarySheet);
    }
    query();
    EXPECT_EQ(page(detailSheet).size(), 1) << "a new summary must load the same row's detail anew";
    query();
    EXPECT_EQ(pageIndex(), 0);
}

TEST_F(ManCome, ADoubleClickDrillsAndThenOpensTheWaybill)
{
    EXPECT_EQ(page(detailSheet), QStringList()); // nothing to drill into yet
    page(summarySheet);
    query();
    EXPECT_EQ(doubleClick(summary, 1, QStringLiteral("BILLCOUNT")).size(), 1);
    EXPECT_EQ(pageIndex(), 1);
    const QString bill = column(details, QStringLiteral("BILL_CODE"))[0];
    doubleClick(details, 0, QStringLiteral("SCAN_SITE"));
    EXPECT_EQ(happened(QStringLiteral("guest"), { QStringLiteral("bill_code"), QStringLiteral("connections") }).size(), 1);
    const QJsonArray opened = m_client.obey(QStringLiteral("forms"))[u"forms"].toArray();
    EXPECT_EQ(opened.size(), 2) << "the track of " << bill.toStdString();
}

TEST_F(ManCome, RefusesWithTextTitleAndFocus)
{
    const QString site = QStringLiteral("DBLookupComboboxEh1");
    m_client.set(site, QStringLiteral("  "));
    EXPECT_EQ(m_client.textOf(site), QStringLiteral("北京")); // leaving it empty gives the login site back
    m_client.obey(QStringLiteral("set"),
        { { QStringLiteral("control"), site }, { QStringLiteral("text"), QString() }, { QStringLiteral("leave"), false } });
    query();
    EXPECT_EQ(messages(), QStringList()) << "the query takes the focus, so the site comes back first";

    struct Refusal {
        const char16_t *start;
        const char16_t *end;
        const char16_t *message;
    };
    const Refusal refusals[] = {
        { u"2026-02-12 23:59:58", u"2026-03-15 23:59:59", u"详细：结束日期不能超过开始日期\"31\"天！|日期时间错误|48" },
        { u"2026-03-16 00:00:00", u"2026-03-15 23:59:59", u"详细：结束日期不能比开始日期还早！|日期时间错误|48" },
        { u"昨天", u"2026-03-15 23:59:59", u"详细：您所输入的日期时间错误！|日期时间格式|48" },
    };
    query();
    const int shown = rowCount(summary);
    for (const Refusal &refusal : refusals) {
        m_client.set(QStringLiteral("DBDateTimeEditEh1"), QString::fromUtf16(refusal.start));
        m_client.set(QStringLiteral("DBDateTimeEditEh2"), QString::fromUtf16(refusal.end));
        page(detailSheet);
        EXPECT_EQ(query(), QStringList());
        EXPECT_EQ(messages(), QStringList(QString::fromUtf16(refusal.message)));
        EXPECT_EQ(pageIndex(), 0);
        EXPECT_EQ(rowCount(summary), shown);
    }
}

} // namespace
