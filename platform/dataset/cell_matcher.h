#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/dataset/row_overlay.h"
#include "platform/dataset/text_pattern.h"

namespace platform {

/// Compares the cells of one column with a text. Made once per search; the values of a dictionary are compared once and not per row.
class CellMatcher {
public:
    /// By value: numbers as numbers, everything else as text; the empty text is null.
    CellMatcher(const RowOverlay &rows, std::size_t column, const QString &value, LocateOption option);
    /// By what a person reads.
    CellMatcher(const RowOverlay &rows, std::size_t column, const TextPattern &pattern);

    /// False when no row can match.
    bool isPossible() const { return m_possible; }
    bool matches(std::uint32_t row) const;

private:
    void compareDictionary();
    bool matchesCell(std::uint32_t row) const;

    const RowOverlay &m_rows;
    std::size_t m_column;
    TextPattern m_pattern;
    bool m_isPlain;
    bool m_isText;
    bool m_possible = true;
    std::optional<packet::Decimal> m_number; ///< set when the column is searched for a number
    std::vector<std::uint8_t> m_table; ///< for each text of the dictionary whether it matches
};

} // namespace platform
