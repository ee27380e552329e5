#include "guest/track.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace guest;

namespace {

/// An event a line: kind, hour, site, and what is known of station and piece.
Track trackOf(const QString &lines)
{
    static const QStringList kinds { QStringLiteral("收件"), QStringLiteral("到件"), QStringLiteral("入库"), QStringLiteral("发件"),
        QStringLiteral("派件"), QStringLiteral("问题件"), QStringLiteral("签收") };
    Track track { QStringLiteral("268000000001"), {}, {} };
    for (const QString &line : lines.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList words = line.split(u' ');
        TrackEvent event;
        event.kind = EventKind(kinds.indexOf(words[0]));
        event.type = words[0];
        event.time = u"2026-03-01 " + words[1] + u":00:00";
        event.site = words[2];
        (event.kind == EventKind::SendOut ? event.next : event.previous) = words.value(3);
        event.piece = words.value(4);
        track.events.append(event);
    }
    arrange(track);
    return track;
}

QStringList alarmed(const Track &track)
{
    QStringList times;
    for (const TrackEvent &event : track.events) {
        if (!event.alarm.isEmpty())
            times.append(event.time.mid(11, 2) + event.piece);
    }
    return times;
}

struct TrackCase {
    const char *what;
    const char16_t *events;
    const char16_t *state;
    const char16_t *sentence;
    const char16_t *alarms; ///< hours, with the piece
};

const TrackCase cases[] = {
    { "picked up", u"收件 08 甲", u"已收件", u"2026-03-01 08:00:00 已由 甲 收件，尚未发出。", u"" },
    { "on its way", u"收件 08 甲\n发件 09 甲 乙", u"在途", u"2026-03-01 09:00:00 已由 甲 发往 乙，尚未到达；1 处发出未到件：甲→乙。",
        u"09" },
    { "sent to nobody knows where", u"发件 09 甲", u"在途", u"2026-03-01 09:00:00 已由 甲 发出，下一站没有登记。", u"" },
    { "arrived, given out of order", u"到件 11 乙 甲\n发件 09 甲 乙", u"已到达", u"2026-03-01 11:00:00 已到达 乙，尚未发出或派送。", u"" },
    { "arrived in the second of sending", u"发件 09 甲 乙\n到件 09 乙 甲", u"已到达", u"2026-03-01 09:00:00 已到达 乙，尚未发出或派送。",
        u"" },
    { "came and went in one second", u"发件 08 甲 乙\n发件 09 乙 丙\n到件 09 乙 甲", u"在途",
        u"2026-03-01 09:00:00 已由 乙 发往 丙，尚未到达；1 处发出未到件：乙→丙。", u"09" },
    { "the arrival of an earlier visit does not count", u"到件 07 乙 丙\n发件 08 乙 甲\n到件 09 甲 乙\n发件 10 甲 乙", u"在途",
        u"2026-03-01 10:00:00 已由 甲 发往 乙，尚未到达；1 处发出未到件：甲→乙。", u"10" },
    { "sent twice, one gap", u"发件 08 甲 乙\n发件 10 甲 乙", u"在途",
        u"2026-03-01 10:00:00 已由 甲 发往 乙，尚未到达；1 处发出未到件：甲→乙。", u"08 10" },
    { "sent twice, arrived", u"发件 08 甲 乙\n发件 10 甲 乙\n到件 12 乙 甲", u"已到达", u"2026-03-01 12:00:00 已到达 乙，尚未发出或派送。",
        u"" },
    { "sent to one, turned up at another", u"发件 08 甲 乙\n到件 12 丙 甲\n入库 13 丙", u"入库",
        u"2026-03-01 13:00:00 在 丙 入库；1 处发出未到件：甲→乙。", u"08" },
    { "one piece of two is lost", u"发件 08 甲 乙\n发件 08 甲 乙 P2\n到件 12 乙 甲", u"已到达",
        u"2026-03-01 12:00:00 已到达 乙，尚未发出或派送；1 处发出未到件：甲→乙（1 件）。", u"08P2" },
    { "two gaps, pieces counted", u"发件 08 甲 乙\n发件 08 甲 乙 P2\n发件 10 乙 丙\n派件 11 丙", u"派送中",
        u"2026-03-01 11:00:00 由 丙 派送中；2 处发出未到件：甲→乙（2 件）、乙→丙（1 件）。", u"08 08P2 10" },
    { "the signature is the end, whatever is scanned later", u"签收 12 丙\n到件 13 丙 甲\n问题件 14 丙", u"已签收",
        u"2026-03-01 12:00:00 已签收（签收），派件网点 丙；问题件 1 条。", u"" },
    { "a problem is not a place", u"到件 09 乙 甲\n问题件 10 甲\n问题件 11 甲", u"已到达",
        u"2026-03-01 09:00:00 已到达 乙，尚未发出或派送；问题件 2 条。", u"" },
    { "a problem and nothing else", u"问题件 10 甲", u"未扫描", u"运单没有录入，也没有任何扫描；问题件 1 条。", u"" },
    { "nothing", u"", u"无此单", u"没有找到运单 268000000001 的任何记录，请核对单号。", u"" },
};

TEST(Track, SaysWhereTheParcelIsAndWhatNeverArrived)
{
    for (const TrackCase &given : cases) {
        const Track track = trackOf(QString::fromUtf16(given.events));
        EXPECT_EQ(positionOf(track).state, QString::fromUtf16(given.state)) << given.what;
        EXPECT_EQ(positionOf(track).sentence, QString::fromUtf16(given.sentence)) << given.what;
        EXPECT_EQ(alarmed(track).join(u' '), QString::fromUtf16(given.alarms)) << given.what;
    }
}

TEST(Track, NamesTheSignerAndTheCourier)
{
    Track track = trackOf(QStringLiteral("派件 09 丙"));
    track.events[0].courier = QStringLiteral("张三");
    EXPECT_EQ(positionOf(track).sentence, QStringLiteral("2026-03-01 09:00:00 由 丙 张三 派送中。"));
    track = trackOf(QStringLiteral("签收 12 丙"));
    track.events[0].signer = QStringLiteral("前台");
    EXPECT_EQ(positionOf(track).sentence, QStringLiteral("2026-03-01 12:00:00 已签收（签收），签收人 前台，派件网点 丙。"));
}

TEST(Track, AnEnteredWaybillWithoutScansIsKnown)
{
    Track track { QStringLiteral("1"), { QStringLiteral("2026-03-01 08:00:00") }, {} };
    EXPECT_EQ(positionOf(track).sentence, QStringLiteral("运单已录入，但没有任何扫描。"));
}

TEST(Track, TheTextHoldsWaybillAndTableAndLeavesEmptyFieldsOut)
{
    Track track = trackOf(QStringLiteral("发件 09 甲 乙 P2"));
    track.bill = QStringList { QStringLiteral("2026-03-01 08:00:00"), QString(), QStringLiteral("乙") };
    EXPECT_EQ(textOf(track),
        QStringLiteral("运单编号：268000000001\n"
                       "2026-03-01 09:00:00 已由 甲 发往 乙，尚未到达；1 处发出未到件：甲→乙（1 件）。\n"
                       "寄件日期：2026-03-01 08:00:00\n"
                       "目的网点：乙\n"
                       "时间\t类型\t网点\t扫描人\t班次\t上一站\t下一站\t异常\t重量\t子单号\t收/派件员\t备注\t袋号\n"
                       "2026-03-01 09:00:00\t发件\t甲\t\t\t\t乙\t未到件\t\tP2\t\t\t\n"));
}

} // namespace
