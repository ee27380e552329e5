#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace guest {

/// What happened to a parcel. Things of the same second happened in this order.
enum class EventKind { PickUp, Arrival, Other, SendOut, Delivery, Problem, Signature };

struct TrackEvent {
    EventKind kind = EventKind::Other;
    QString time; ///< "yyyy-mm-dd hh:mm:ss"
    QString type; ///< as the network calls it: 收件, 出库, 正常签收
    QString site;
    QString man; ///< who scanned or registered it
    QString courier;
    QString shift;
    QString previous; ///< the station that the parcel came from
    QString next; ///< the station that it goes to
    QString piece; ///< sub-waybill number; empty for the main piece
    QString bag;
    QString weight;
    QString remark;
    QString signer;
    QString alarm; ///< "未到件" on a send-out whose next station has no later arrival of that piece
};

/// Between two stations: sent out, never arrived.
struct Gap {
    QString from;
    QString to;
    int pieces = 0;
};

/// All that is recorded of one waybill.
struct Track {
    QString number;
    QStringList bill; ///< the values of billFields(); empty: not entered
    QList<TrackEvent> events;

    bool isKnown() const { return !bill.isEmpty() || !events.isEmpty(); }
};

/// Puts the events in time order and raises the alarm of those that never arrived.
void arrange(Track &track);

/// The gaps of an arranged track in time order; a leg that was sent several times over counts once.
QList<Gap> gapsOf(const Track &track);

/// Where the parcel is now.
struct Position {
    QString state; ///< in a few characters
    QString sentence; ///< with the gaps and the problems counted
};
Position positionOf(const Track &track);

/// The whole track for a message or a letter: position, waybill, and the events as a table with tabs.
QString textOf(const Track &track);

/// One column of the track as it is shown and copied.
struct TrackColumn {
    enum Type { Text, Time, Number };
    const char *field;
    QStringView caption;
    int width;
    QString TrackEvent::*value;
    Type type = Text;
};
const QList<TrackColumn> &trackColumns();

} // namespace guest
