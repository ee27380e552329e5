#pragma once

#include "guest/track.h"
#include "platform/connection/remote_server.h"

namespace guest {

/// The waybill numbers of a list, without blanks and repetitions, in the list's order.
struct WantedNumbers {
    QStringList numbers;
    QStringList refused; ///< no number can look like these: too long, or with control characters
};
WantedNumbers wantedNumbers(const QStringList &bills);

/// The arranged tracks of the numbers, in their order. The first server is asked for all of them, each further one for those that
/// none before it knows; should one of the further ones fail, the application object tells so and what is known stays.
/// Throws what the first server throws.
QList<Track> queryTracks(const QStringList &numbers, const QList<TCustomRemoteServer *> &servers);

} // namespace guest
