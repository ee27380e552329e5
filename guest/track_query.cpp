#include "guest/track_query.h"

#include "guest/bill_fields.h"
#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/handler.h"

#include <QHash>

#include <algorithm>
#include <span>

using namespace platform;

namespace guest {
namespace {

constexpr qsizetype longestNumber = 32;
/// Of one statement: far below what a database allows in a list.
constexpr qsizetype mostNumbers = 500;

struct EventColumn {
    QStringView expression;
    QString TrackEvent::*member; ///< null: the station, whose meaning depends on the table
};

constexpr EventColumn scanColumns[] = {
    { u"a.SCAN_DATE", &TrackEvent::time },
    { u"a.SCAN_TYPE", &TrackEvent::type },
    { u"a.SCAN_SITE", &TrackEvent::site },
    { u"a.SCAN_MAN", &TrackEvent::man },
    { u"a.DISPATCH_OR_SEND_MAN", &TrackEvent::courier },
    { u"a.CLASS", &TrackEvent::shift },
    { u"a.PRE_OR_NEXT_STATION", nullptr },
    { u"a.SUB_BILL_CODE", &TrackEvent::piece },
    { u"a.OWNER_BAG_NO", &TrackEvent::bag },
    { u"a.WEIGHT", &TrackEvent::weight },
    { u"a.REMARK", &TrackEvent::remark },
};
constexpr EventColumn problemColumns[] = {
    { u"a.REGISTER_DATE", &TrackEvent::time },
    { u"'问题件'", &TrackEvent::type },
    { u"a.REGISTER_SITE", &TrackEvent::site },
    { u"a.REGISTER_MAN", &TrackEvent::man },
    { u"trim(a.PROBLEM_TYPE||' '||a.REMARK)", &TrackEvent::remark },
};
constexpr EventColumn signColumns[] = {
    { u"a.SIGN_DATE", &TrackEvent::time },
    { u"nvl(a.STATE_NAME,'签收')", &TrackEvent::type },
    { u"a.RECORD_SITE", &TrackEvent::site },
    { u"a.RECORD_MAN", &TrackEvent::man },
    { u"a.DISPATCH_NAME", &TrackEvent::courier },
    { u"a.SIGN_MAN", &TrackEvent::signer },
    { u"trim('签收人：'||a.SIGN_MAN||' '||a.REMARK)", &TrackEvent::remark },
};

struct EventSource {
    EventKind kind;
    QStringView table;
    QStringView index; ///< by waybill number
    std::span<const EventColumn> columns;
    QString TrackEvent::*station = nullptr;
};

constexpr EventSource eventSources[] = {
    { EventKind::PickUp, u"TAB_SCAN_REC", u"TAB_SCAN_REC_I", scanColumns, &TrackEvent::previous },
    { EventKind::SendOut, u"TAB_SCAN_SEND", u"TAB_SCAN_SEND_I", scanColumns, &TrackEvent::next },
    { EventKind::Arrival, u"TAB_SCAN_COME", u"TAB_SCAN_COME_I", scanColumns, &TrackEvent::previous },
    { EventKind::Delivery, u"TAB_SCAN_DISP", u"TAB_SCAN_DISP_I", scanColumns, &TrackEvent::next },
    { EventKind::Other, u"TAB_SCAN_OTHER", u"TAB_SCAN_OTHER_I", scanColumns, &TrackEvent::next },
    { EventKind::Problem, u"TAB_PROBLEM", u"TAB_PROBLEM_I", problemColumns },
    { EventKind::Signature, u"TAB_SIGN", u"TAB_SIGN_I1", signColumns },
};

/// Collects the tracks of some numbers from one server.
class Collector {
public:
    Collector(const QStringList &numbers, TCustomRemoteServer *server)
    {
        m_dataSet.setObjectName(QStringLiteral("cdsTrack"));
        m_dataSet.setRemoteServer(server);
        for (const QString &number : numbers) {
            m_places.insert(number, m_tracks.size());
            m_tracks.append({ number, {}, {} });
        }
    }

    QList<Track> collect()
    {
        for (qsizetype first = 0; first < m_tracks.size(); first += mostNumbers) {
            const QString condition = numbersCondition(first);
            readBills(condition);
            for (const EventSource &source : eventSources)
                readEvents(source, condition);
        }
        std::ranges::for_each(m_tracks, arrange);
        return std::move(m_tracks);
    }

private:
    QString numbersCondition(qsizetype first) const
    {
        QStringList literals;
        for (const Track &track : m_tracks.mid(first, mostNumbers))
            literals.append(u'\'' + QString(track.number).replace(u'\'', QStringLiteral("''")) + u'\'');
        return u" where a.BILL_CODE in (" + literals.join(u',') + u')';
    }

    /// Runs a statement whose first column is the waybill number, and gives each row to its track.
    template <class Take>
    void forEachRow(const QString &statement, Take take)
    {
        m_dataSet.close();
        m_dataSet.setCommandText(statement);
        m_dataSet.open();
        for (int row = 0; row < m_dataSet.recordCount(); ++row) {
            const auto place = m_places.constFind(m_dataSet.text(0, row));
            if (place != m_places.cend())
                take(m_tracks[*place], row);
        }
    }

    void readBills(const QString &condition)
    {
        QString statement = QStringLiteral("select /*+index(a,TAB_BILL_P)*/a.BILL_CODE");
        for (const BillField &field : billFields())
            statement += u',' + field.expression;
        forEachRow(statement + u" from TAB_BILL a" + condition, [this](Track &track, int row) {
            track.bill.clear();
            for (int field = 1; field < m_dataSet.fieldCount(); ++field)
                track.bill.append(m_dataSet.text(field, row));
        });
    }

    void readEvents(const EventSource &source, const QString &condition)
    {
        QString statement = u"select /*+index(a," + source.index + u")*/a.BILL_CODE";
        for (const EventColumn &column : source.columns)
            statement += u',' + column.expression;
        forEachRow(statement + u" from " + source.table + u" a" + condition, [this, &source](Track &track, int row) {
            TrackEvent event;
            event.kind = source.kind;
            int field = 0;
            for (const EventColumn &column : source.columns)
                event.*(column.member ? column.member : source.station) = m_dataSet.text(++field, row);
            track.events.append(event);
        });
    }

    TClientDataSetEx m_dataSet;
    QList<Track> m_tracks;
    QHash<QString, qsizetype> m_places;
};

/// Asks one more server for what is not known yet.
void complete(QList<Track> &tracks, TCustomRemoteServer *server)
{
    QStringList unknown;
    for (const Track &track : tracks) {
        if (!track.isKnown())
            unknown.append(track.number);
    }
    QList<Track> found = Collector(unknown, server).collect();
    for (Track &track : tracks) {
        if (!track.isKnown())
            track = found.takeFirst();
    }
}

bool isPossible(const QString &number)
{
    const auto isControl = [](QChar character) { return character.category() == QChar::Other_Control; };
    return number.size() <= longestNumber && std::ranges::none_of(number, isControl) && number.isValidUtf16();
}

} // namespace

WantedNumbers wantedNumbers(const QStringList &bills)
{
    WantedNumbers wanted;
    for (const QString &bill : bills) {
        const QString number = bill.trimmed();
        QStringList &list = isPossible(number) ? wanted.numbers : wanted.refused;
        if (!number.isEmpty())
            list.append(number);
    }
    wanted.numbers.removeDuplicates();
    wanted.refused.removeDuplicates();
    return wanted;
}

QList<Track> queryTracks(const QStringList &numbers, const QList<TCustomRemoteServer *> &servers)
{
    QList<Track> tracks = Collector(numbers, servers.first()).collect();
    for (TCustomRemoteServer *server : servers.mid(1))
        guarded([&] { complete(tracks, server); });
    return tracks;
}

} // namespace guest
