#pragma once

#include "platform/grid/grid_columns.h"

/// The columns of a scan from the waybill's number to its express type; `station` titles the station before or behind, `courier`
/// the one who picks up or delivers.
GridColumns scanColumns(QStringView station, QStringView courier = u"收/派件员");
/// Sums of the transfer or dispatch fee and of the fee that is due for delivery.
GridColumns feeColumns();
GridColumn remarkColumn();
/// All of these with the price to collect: what most lists of scans show.
GridColumns scanListColumns(QStringView station, QStringView courier = u"收/派件员");
