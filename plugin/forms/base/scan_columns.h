#pragma once

#include "platform/grid/grid_columns.h"

namespace plugin {

/// The columns of a scan from the waybill's number to its express type; `station` titles the station before or behind, `courier`
/// the one who picks up or delivers.
platform::GridColumns scanColumns(QStringView station, QStringView courier = u"收/派件员");
/// Sums of the transfer or dispatch fee and of the fee that is due for delivery.
platform::GridColumns feeColumns();
platform::GridColumn remarkColumn();
/// All of these with the price to collect: what most lists of scans show.
platform::GridColumns scanListColumns(QStringView station, QStringView courier = u"收/派件员");

} // namespace plugin
