#include "platform/grid/sort_keys.h"

#include <algorithm>

namespace platform {

namespace {

SortMark following(SortMark mark)
{
    switch (mark) {
    case SortMark::None:
        return SortMark::Ascending;
    case SortMark::Ascending:
        return SortMark::Descending;
    case SortMark::Descending:
        return SortMark::None;
    }
    return SortMark::None;
}

} // namespace

QList<SortKey> cycleSortKeys(QList<SortKey> keys, int column, SortClick click)
{
    const auto isColumn = [column](const SortKey &key) { return key.column == column; };
    const auto found = std::find_if(keys.begin(), keys.end(), isColumn);
    const SortMark mark = following(found == keys.end() ? SortMark::None : found->mark);
    if (click == SortClick::Replace)
        return mark == SortMark::None ? QList<SortKey> {} : QList<SortKey> { { column, mark } };
    if (mark == SortMark::None)
        keys.erase(found);
    else if (found == keys.end())
        keys.append({ column, mark });
    else
        found->mark = mark;
    return keys;
}

} // namespace platform
