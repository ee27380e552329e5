#include "guest/track.h"

#include "guest/bill_fields.h"

#include <QSet>

#include <algorithm>
#include <tuple>

namespace guest {
namespace {

const QString alarmText = QStringLiteral("未到件");

/// The last event that says where the parcel is: a signature above all, else the last scan. A send-out that has arrived is
/// passed over, since an arrival of the same second stands before it.
const TrackEvent *lastMove(const Track &track)
{
    const TrackEvent *last = nullptr;
    for (const TrackEvent &event : track.events) {
        const bool arrived = event.kind == EventKind::SendOut && !event.next.isEmpty() && event.alarm.isEmpty();
        const bool moves = event.kind != EventKind::Problem && !arrived;
        if (moves && !(last && last->kind == EventKind::Signature && event.kind != EventKind::Signature))
            last = &event;
    }
    return last;
}

Position positionAfter(const TrackEvent &event)
{
    const QString at = event.time + u' ';
    switch (event.kind) {
    case EventKind::PickUp:
        return { QStringLiteral("已收件"), at + u"已由 " + event.site + u" 收件，尚未发出" };
    case EventKind::Arrival:
        return { QStringLiteral("已到达"), at + u"已到达 " + event.site + u"，尚未发出或派送" };
    case EventKind::SendOut:
        return { QStringLiteral("在途"),
            event.next.isEmpty() ? QString(at + u"已由 " + event.site + u" 发出，下一站没有登记")
                                 : QString(at + u"已由 " + event.site + u" 发往 " + event.next + u"，尚未到达") };
    case EventKind::Delivery:
        return { QStringLiteral("派送中"),
            at + u"由 " + event.site + u' ' + event.courier + (event.courier.isEmpty() ? u"派送中" : u" 派送中") };
    case EventKind::Signature:
        return { QStringLiteral("已签收"),
            at + u"已签收（" + event.type + u"），" + (event.signer.isEmpty() ? QString() : QString(u"签收人 " + event.signer + u"，"))
                + u"派件网点 " + event.site };
    case EventKind::Problem:
    case EventKind::Other:
        break;
    }
    return { event.type, at + u"在 " + event.site + u' ' + event.type };
}

Position positionWithoutScans(const Track &track)
{
    if (!track.isKnown())
        return { QStringLiteral("无此单"), u"没有找到运单 " + track.number + u" 的任何记录，请核对单号" };
    return { QStringLiteral("未扫描"),
        track.bill.isEmpty() ? QStringLiteral("运单没有录入，也没有任何扫描") : QStringLiteral("运单已录入，但没有任何扫描") };
}

QString gapWords(const Track &track)
{
    const QList<Gap> gaps = gapsOf(track);
    if (gaps.isEmpty())
        return {};
    const bool severalPieces = std::ranges::any_of(track.events, [](const TrackEvent &event) { return !event.piece.isEmpty(); });
    QStringList legs;
    for (const Gap &gap : gaps)
        legs.append(gap.from + u"→" + gap.to + (severalPieces ? QStringLiteral("（%1 件）").arg(gap.pieces) : QString()));
    return QStringLiteral("；%1 处发出未到件：").arg(gaps.size()) + legs.join(u'、');
}

QString problemWords(const Track &track)
{
    const auto problems = std::ranges::count(track.events, EventKind::Problem, &TrackEvent::kind);
    return problems == 0 ? QString() : QStringLiteral("；问题件 %1 条").arg(problems);
}

} // namespace

void arrange(Track &track)
{
    std::ranges::stable_sort(track.events, {}, [](const TrackEvent &event) { return std::tie(event.time, event.kind, event.piece); });
    const auto arrived = [&track](const TrackEvent &sent) {
        return std::ranges::any_of(track.events, [&sent](const TrackEvent &event) {
            return event.kind == EventKind::Arrival && event.site == sent.next && event.piece == sent.piece && event.time >= sent.time;
        });
    };
    for (TrackEvent &event : track.events) {
        const bool missing = event.kind == EventKind::SendOut && !event.next.isEmpty() && !arrived(event);
        event.alarm = missing ? alarmText : QString();
    }
}

QList<Gap> gapsOf(const Track &track)
{
    QList<Gap> gaps;
    QSet<QStringList> counted;
    for (const TrackEvent &event : track.events) {
        const QStringList piece { event.site, event.next, event.piece };
        if (event.alarm.isEmpty() || counted.contains(piece))
            continue;
        counted.insert(piece);
        auto leg = std::ranges::find_if(gaps, [&event](const Gap &gap) { return gap.from == event.site && gap.to == event.next; });
        if (leg == gaps.end())
            leg = gaps.insert(gaps.end(), { event.site, event.next });
        ++leg->pieces;
    }
    return gaps;
}

Position positionOf(const Track &track)
{
    const TrackEvent *last = lastMove(track);
    Position position = last ? positionAfter(*last) : positionWithoutScans(track);
    position.sentence += gapWords(track) + problemWords(track) + u'。';
    return position;
}

QString textOf(const Track &track)
{
    QString text = u"运单编号：" + track.number + u'\n' + positionOf(track).sentence + u'\n';
    for (qsizetype field = 0; field < track.bill.size(); ++field) {
        if (!track.bill[field].isEmpty())
            text += billFields()[std::size_t(field)].caption + u'：' + track.bill[field] + u'\n';
    }
    const auto addLine = [&text](auto &&cell) {
        QStringList cells;
        for (const TrackColumn &column : trackColumns())
            cells.append(cell(column));
        text += cells.join(u'\t') + u'\n';
    };
    if (!track.events.isEmpty())
        addLine([](const TrackColumn &column) { return column.caption.toString(); });
    for (const TrackEvent &event : track.events)
        addLine([&event](const TrackColumn &column) { return event.*column.value; });
    return text;
}

const QList<TrackColumn> &trackColumns()
{
    static const QList<TrackColumn> columns {
        { "SCAN_DATE", u"时间", 132, &TrackEvent::time, TrackColumn::Time },
        { "SCAN_TYPE", u"类型", 76, &TrackEvent::type },
        { "SCAN_SITE", u"网点", 100, &TrackEvent::site },
        { "SCAN_MAN", u"扫描人", 60, &TrackEvent::man },
        { "CLASS", u"班次", 44, &TrackEvent::shift },
        { "PREVIOUS_STATION", u"上一站", 100, &TrackEvent::previous },
        { "NEXT_STATION", u"下一站", 100, &TrackEvent::next },
        { "ALARM", u"异常", 52, &TrackEvent::alarm },
        { "WEIGHT", u"重量", 52, &TrackEvent::weight, TrackColumn::Number },
        { "SUB_BILL_CODE", u"子单号", 112, &TrackEvent::piece },
        { "COURIER", u"收/派件员", 70, &TrackEvent::courier },
        { "REMARK", u"备注", 200, &TrackEvent::remark },
        { "OWNER_BAG_NO", u"袋号", 100, &TrackEvent::bag },
    };
    return columns;
}

} // namespace guest
