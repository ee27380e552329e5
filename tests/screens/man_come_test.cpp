#include "tests/screens/screen_test.h"

namespace {

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

    query();
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
        makeCurrent(int(row));
        EXPECT_EQ(page(detailSheet).size(), 1);
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
