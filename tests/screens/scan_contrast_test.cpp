#include "tests/screens/screen_test.h"

namespace {

class ScanContrast : public ScreenTest {
protected:
    ScanContrast()
        : ScreenTest(QStringLiteral("frm_ScanContrast"))
    {
    }
};

TEST_F(ScanContrast, OpensWithANoonToNoonDayAndTheLoginSite)
{
    expectDefaults({ { "DBLookupComboboxEh5", u"北京" }, { "DBLookupComboboxEh1", u"" }, { "DBLookupComboboxEh2", u"到件" },
        { "DBComboBoxEh1", u"全部" }, { "DBLookupComboboxEh3", u"" }, { "DBComboBoxEh4", u"全部" }, { "DBLookupComboboxEh10", u"" },
        { "DBDateTimeEditEh1", u"2026-03-14 12:00:00" }, { "DBDateTimeEditEh2", u"2026-03-15 11:59:59" },
        { "DBLookupComboboxEh4", u"北京" }, { "DBLookupComboboxEh6", u"" }, { "DBLookupComboboxEh7", u"到件" },
        { "DBComboBoxEh2", u"全部" }, { "DBLookupComboboxEh8", u"" }, { "DBComboBoxEh3", u"全部" }, { "DBLookupComboboxEh9", u"" },
        { "DBDateTimeEditEh3", u"2026-03-14 12:00:00" }, { "DBDateTimeEditEh4", u"2026-03-15 11:59:59" } });
    EXPECT_TRUE(m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("CheckBox1") } })[u"checked"].toBool());
}

TEST_F(ScanContrast, AtItsDefaultsEveryWaybillIsInBothSets)
{
    query();
    EXPECT_EQ(happened(QStringLiteral("statement"), { QStringLiteral("dataset"), QStringLiteral("connection") }),
        QStringList({ QStringLiteral("cds|host"), QStringLiteral("cds1|host"), QStringLiteral("cds2|host") }));
    EXPECT_EQ(
        happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList({ QStringLiteral("102"), QStringLiteral("0") }));
    EXPECT_GT(rowCount(QStringLiteral("DataView1")), 0);
    EXPECT_EQ(rowCount(QStringLiteral("DataView2")), 0);
    EXPECT_EQ(rowCount(QStringLiteral("DataView3")), 0);
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
    EXPECT_EQ(query().size(), 1);
    EXPECT_EQ(rowCount(QStringLiteral("DataView2")), onlySource);
}

TEST_F(ScanContrast, ARefusalEndsTheBusyCursorAndShowsTheFirstPage)
{
    m_client.set(QStringLiteral("DBLookupComboboxEh7"), QString());
    page(QStringLiteral("TabSheet3"));
    expectRefusal(QStringLiteral("详细：扫描类型必须选择！|总部扫描监控|48"), QStringLiteral("DBLookupComboboxEh7"));
    EXPECT_EQ(
        happened(QStringLiteral("cursor"), { QStringLiteral("number") }), QStringList({ QStringLiteral("102"), QStringLiteral("0") }));
    EXPECT_EQ(pageIndex(), 0);
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
