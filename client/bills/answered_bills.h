#pragma once

#include "packet/packet.h"

#include <QStringList>

#include <vector>

class TDataSet;

namespace client {

/// What the answer to a list says of its numbers.
struct UnansweredBills {
    QStringList unknown; ///< a row stands there and nothing is known but the number
    QStringList missing; ///< no row
};

/// Compares the numbers with the rows of an open dataset. Nothing when its rows do not tell: they carry no waybill number, or a
/// limit has cut them.
UnansweredBills unansweredBills(const QStringList &numbers, const TDataSet &rows);

/// The rows of several answers of one statement, one after the other. Throws Exception when their columns differ.
packet::PacketPtr joinedRows(const std::vector<packet::PacketPtr> &answers);

} // namespace client
