#pragma once

#include "platform/dataset/filter_condition.h"

#include <QString>

#include <memory>

namespace platform {

/// A filter text compiled against the columns of a packet. The language: = <> < <= > >=, in (...), like with % and _, is null,
/// and, or, not, parentheses, texts in single quotes (doubled inside), numbers, field names in any case and, when
/// they are no plain names, in brackets. Nulls compare as in SQL, and the empty text is null.
class FilterExpression {
public:
    /// Throws DataSetError naming the place.
    FilterExpression(const QString &text, const packet::Packet &packet);
    ~FilterExpression();

    /// The source rows that pass, in their order; deleted rows never do.
    std::vector<std::uint32_t> select(const RowOverlay &rows);

    struct Node;

private:
    std::unique_ptr<Node> m_root;
};

} // namespace platform
