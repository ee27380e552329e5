#pragma once

#include "platform/dataset/data_set.h"

#include <QList>
#include <QPointer>
#include <QString>

#include <vector>

namespace platform {

/// Where a lookup searches: indexes of fields.
struct LookupFields {
    int code; ///< -1 when there is none
    QList<int> names; ///< the listed one first

    bool operator==(const LookupFields &) const = default;
};

struct LookupMatches {
    std::vector<int> rows;
    bool exact = false; ///< the first one is what was typed, letter by letter
};

/// The texts of a dataset's rows made ready for being looked up, so that a key costs less than what a person feels. Making it
/// costs about as much as a few keys would without it; it is of no use after the dataset's rows have changed.
class LookupIndex {
public:
    LookupIndex(const TDataSet &dataSet, LookupFields fields);

    bool isOf(const TDataSet &dataSet, const LookupFields &fields) const { return m_dataSet == &dataSet && m_fields == fields; }
    /// The rows that fit, the best first, equally good ones in reading order of the listed field, exact ones in their shown order.
    /// Blanks around `typed` do not count; a blank one fits nothing.
    LookupMatches find(const QString &typed) const;
    /// All rows, by how a Chinese reader orders the texts of the listed field. Stable.
    const std::vector<int> &rowsByReading() const { return m_byReading; }

private:
    struct Text {
        QString shown;
        QString folded; ///< without regard to case
    };
    class Search;

    QPointer<const TDataSet> m_dataSet;
    LookupFields m_fields;
    std::vector<int> m_byReading;
    std::vector<Text> m_texts; ///< of the rows by reading: the code, unless there is none, and the names
};

} // namespace platform
