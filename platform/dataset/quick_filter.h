#pragma once

#include "platform/dataset/row_overlay.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace platform {

/// What a person wants to see of the rows that a dataset shows, besides the dataset's own filter. All of it must hold of a row; a
/// field that the dataset does not have asks nothing.
struct QuickFilter {
    enum class Keep { Those, Others };

    /// The rows whose field shows one of the texts, or all the others. "" stands for null.
    struct Values {
        QString fieldName;
        QStringList texts;
        Keep keep = Keep::Those;

        bool operator==(const Values &) const = default;
    };

    QList<Values> values {};
    QString text {}; ///< stands in one of the fields, as it is written or as it is read; case does not count
    QStringList fieldNames {}; ///< where the text is looked for

    bool isEmpty() const { return values.isEmpty() && text.isEmpty(); }
    bool operator==(const QuickFilter &) const = default;
};

/// The rows among `order` (null: all source rows) that pass, in their order. Each text of a dictionary is compared once.
/// Its cost is linear in rows and texts.
std::vector<std::uint32_t> passingRows(const QuickFilter &filter, const RowOverlay &rows, const std::vector<std::uint32_t> *order);

/// A text that stands in a column, and in how many rows.
struct ValueCount {
    QString text; ///< "" for null
    int rows;
};

/// What stands in a column of those rows, in no order; only the first `most` different texts that are met are counted.
std::vector<ValueCount> countValues(const RowOverlay &rows, std::size_t column, const std::vector<std::uint32_t> &among, std::size_t most);

} // namespace platform
