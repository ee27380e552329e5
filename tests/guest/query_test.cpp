#include "guest/track_query.h"
#include "platform/toolkit/application.h"
#include "tests/guest/fake_server.h"

#include <gtest/gtest.h>

using namespace guest;
using namespace platform;

namespace {

const QString sendTable = QStringLiteral("TAB_SCAN_SEND");

QString sent(const QString &number) { return number + QStringLiteral(",2026-03-01 08:00:00,发件,甲,张三,,早班,乙,,,2.5,易碎"); }

QStringList tablesOf(const FakeServer &server)
{
    QStringList tables;
    for (const QString &statement : server.statements)
        tables.append(tableOf(statement));
    return tables;
}

TEST(WantedNumbers, BlanksAndRepetitionsGoAndTheImpossibleIsRefused)
{
    const QString longNumber(33, u'1');
    const QString withTab = QStringLiteral("1\t2");
    const WantedNumbers wanted = wantedNumbers({ QStringLiteral(" 268 "), QString(), QStringLiteral("  "), QStringLiteral("268"),
        longNumber, withTab, QString(32, u'2'), QStringLiteral("a'b"), QStringLiteral("268\r") });
    EXPECT_EQ(wanted.numbers, QStringList({ QStringLiteral("268"), QString(32, u'2'), QStringLiteral("a'b") }));
    EXPECT_EQ(wanted.refused, QStringList({ longNumber, withTab }));
}

TEST(Query, OneStatementATableInAFixedOrderWithQuotesDoubled)
{
    FakeServer server;
    queryTracks({ QStringLiteral("268"), QStringLiteral("a'b") }, { &server });
    EXPECT_EQ(tablesOf(server),
        QStringList({ QStringLiteral("TAB_BILL"), QStringLiteral("TAB_SCAN_REC"), QStringLiteral("TAB_SCAN_SEND"),
            QStringLiteral("TAB_SCAN_COME"), QStringLiteral("TAB_SCAN_DISP"), QStringLiteral("TAB_SCAN_OTHER"),
            QStringLiteral("TAB_PROBLEM"), QStringLiteral("TAB_SIGN") }));
    EXPECT_EQ(server.statements[5],
        QStringLiteral("select /*+index(a,TAB_SCAN_OTHER_I)*/a.BILL_CODE,a.SCAN_DATE,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_MAN,"
                       "a.DISPATCH_OR_SEND_MAN,a.CLASS,a.PRE_OR_NEXT_STATION,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.WEIGHT,a.REMARK "
                       "from TAB_SCAN_OTHER a where a.BILL_CODE in ('268','a''b')"));
}

TEST(Query, ManyNumbersAreAskedInLotsOf500)
{
    FakeServer server;
    QStringList numbers;
    for (int number = 1; number <= 501; ++number)
        numbers.append(QString::number(number));
    server.add(sendTable, sent(QStringLiteral("501")));
    const QList<Track> tracks = queryTracks(numbers, { &server });
    ASSERT_EQ(server.statements.size(), 16);
    EXPECT_TRUE(server.statements[7].contains(u"'500')"));
    EXPECT_TRUE(server.statements[8].endsWith(u" in ('501')"));
    ASSERT_EQ(tracks.size(), 501);
    EXPECT_EQ(tracks[500].number, QStringLiteral("501"));
    EXPECT_EQ(tracks[500].events.size(), 1);
}

TEST(Query, RowsBecomeEventsWithTheStationWhereItBelongs)
{
    FakeServer server;
    server.add(sendTable, sent(QStringLiteral("268")));
    server.add(QStringLiteral("TAB_SCAN_COME"), QStringLiteral("268,2026-03-01 10:00:00,接件,乙,李四,,,甲,268002,D1,1,"));
    server.add(QStringLiteral("TAB_PROBLEM"), QStringLiteral("268,2026-03-01 12:00:00,问题件,乙,王五,遗失 久未到件"));
    server.add(QStringLiteral("TAB_SIGN"), QStringLiteral("268,2026-03-01 13:00:00,代签收,乙,王五,赵六,前台,签收人：前台"));
    const QList<Track> tracks = queryTracks({ QStringLiteral("268") }, { &server });
    EXPECT_EQ(textOf(tracks[0]).section(u'\n', 3),
        QStringLiteral("2026-03-01 08:00:00\t发件\t甲\t张三\t早班\t\t乙\t未到件\t2.5\t\t\t易碎\t\n"
                       "2026-03-01 10:00:00\t接件\t乙\t李四\t\t甲\t\t\t1\t268002\t\t\tD1\n"
                       "2026-03-01 12:00:00\t问题件\t乙\t王五\t\t\t\t\t\t\t\t遗失 久未到件\t\n"
                       "2026-03-01 13:00:00\t代签收\t乙\t王五\t\t\t\t\t\t\t赵六\t签收人：前台\t\n"));
    EXPECT_EQ(tracks[0].events[3].signer, QStringLiteral("前台"));
}

TEST(Query, TheSecondServerIsAskedForWhatTheFirstDoesNotKnow)
{
    FakeServer first;
    FakeServer second;
    first.add(sendTable, sent(QStringLiteral("1")));
    second.add(sendTable, sent(QStringLiteral("3")));
    queryTracks({ QStringLiteral("1") }, { &first, &second });
    EXPECT_TRUE(second.statements.isEmpty());

    const QStringList numbers { QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3") };
    const QList<Track> tracks = queryTracks(numbers, { &first, &second });
    ASSERT_EQ(second.statements.size(), 8);
    EXPECT_TRUE(second.statements[0].endsWith(u" in ('2','3')"));
    EXPECT_TRUE(tracks[0].isKnown());
    EXPECT_FALSE(tracks[1].isKnown());
    EXPECT_TRUE(tracks[2].isKnown());
    EXPECT_EQ(tracks[2].number, QStringLiteral("3"));
}

TEST(Query, AFailureOfTheSecondServerIsToldAndTheFirstOnesAnswerStays)
{
    QStringList errors;
    QObject watcher;
    QObject::connect(Application, &TApplication::happened, &watcher, [&errors](const QString &kind, const QVariantMap &particulars) {
        if (kind == u"error")
            errors.append(particulars[QStringLiteral("text")].toString());
    });
    Application->setMessageResponder([](const MessageRequest &) { return idOk; });
    FakeServer first;
    FakeServer second;
    first.add(sendTable, sent(QStringLiteral("1")));
    second.failure = QStringLiteral("服务器忙");
    const QList<Track> tracks = queryTracks({ QStringLiteral("1"), QStringLiteral("2") }, { &first, &second });
    EXPECT_EQ(errors, QStringList({ QStringLiteral("服务器忙") }));
    EXPECT_TRUE(tracks[0].isKnown());
    Application->setMessageResponder({});
}

} // namespace
