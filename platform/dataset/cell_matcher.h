#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/dataset/row_overlay.h"

/// Compares the cells of one column with a text: numbers as numbers, everything else as text. Made once per search; the
/// values of a dictionary are compared once and not per row.
class CellMatcher {
public:
    CellMatcher(const RowOverlay &rows, std::size_t column, const QString &value, LocateOption option);

    /// False when no row can match.
    bool isPossible() const { return m_possible; }
    bool matches(std::uint32_t row) const;

private:
    bool matchesCell(std::uint32_t row) const;
    bool matchesText(std::string_view text) const;

    const RowOverlay &m_rows;
    std::size_t m_column;
    QString m_value;
    std::string m_text;
    LocateOption m_option;
    bool m_isPlain;
    bool m_isText;
    bool m_possible = true;
    std::optional<packet::Decimal> m_number; ///< set when the column is searched for a number
    std::vector<std::uint8_t> m_table; ///< for each text of the dictionary whether it matches
};
