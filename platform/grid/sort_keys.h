#pragma once

#include "platform/grid/column.h"

namespace platform {

/// A marked column; in a list of them the first sorts first.
struct SortKey {
    int column;
    SortMark mark;
};

enum class SortClick { Replace, Add };

/// The keys after a click on the title of `column`: ascending, descending, none. Add keeps the other keys.
QList<SortKey> cycleSortKeys(QList<SortKey> keys, int column, SortClick click);

} // namespace platform
