#pragma once

#include "platform/grid/column.h"

/// A marked column; in a list of them the first sorts first.
struct SortKey {
    int column;
    SortMark mark;
};

/// The keys after a click on the title of `column`: ascending, descending, none. `add` keeps the other keys.
QList<SortKey> cycleSortKeys(QList<SortKey> keys, int column, bool add);
