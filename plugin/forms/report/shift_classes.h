#pragma once

#include "platform/grid/grid_columns.h"

namespace plugin {

/// The split of a site's arrivals by the class of their shift: road, air, rail, and all others, each with waybills, weight and fee,
/// and their total. The digit behind the first "6" of a column's field is the code of its class.

platform::GridColumns shiftClassColumns();
/// What a select over tab_scan_come a ends with to give these columns, its "from" included.
QString shiftClassSums();
/// The code of the class that a field stands for; null when the field has none.
QChar shiftClassOf(const QString &field);
/// The condition that only scans of this class meet; empty for the total.
QString ofShiftClass(QChar code);

} // namespace plugin
