#pragma once

#include "platform/dataset/pinyin_pattern.h"

#include <QList>
#include <QString>

#include <vector>

class TDataSet;

namespace platform {

/// How well a row fits what was typed, the best first.
enum class LookupRank { SameCode, SameName, SameButCase, CodeBegins, NameBegins, NameContains, PinyinBegins, PinyinContains, None };

/// Decides which rows a typed text means, and how they rank; every way in which a row can be found stands here.
class LookupMatcher {
public:
    /// Blanks around `typed` do not count.
    explicit LookupMatcher(const QString &typed);

    LookupRank rankByCode(const QString &code) const;
    LookupRank rankByName(const QString &name) const;

private:
    QString m_typed;
    PinyinPattern m_read;
};

/// Where a lookup searches: indexes of fields.
struct LookupFields {
    int code; ///< -1 when there is none
    QList<int> names; ///< the listed one first
};

struct LookupMatches {
    std::vector<int> rows;
    bool exact = false; ///< the first one is what was typed, letter by letter
};

/// The rows of `dataSet` that fit, the best first, equally good ones in reading order of the listed field, exact ones in their shown
/// order; the dataset's current row stays.
LookupMatches lookUp(const TDataSet &dataSet, const LookupFields &fields, const QString &typed);

/// Sorts rows of `dataSet` by how a Chinese reader orders the texts of a field. Stable.
void sortByReading(const TDataSet &dataSet, int field, std::vector<int> &rows);

} // namespace platform
