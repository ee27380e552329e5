#include "platform/dataset/cell_matcher.h"

#include <algorithm>

using namespace platform;

using packet::ColumnType;

namespace {

TextPattern patternOf(const QString &value, LocateOption option)
{
    return TextPattern(value, option == LocateOption::Partial ? TextPattern::Match::Beginning : TextPattern::Match::Whole,
        option == LocateOption::CaseInsensitive ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

} // namespace

namespace platform {

CellMatcher::CellMatcher(const RowOverlay &rows, std::size_t column, const QString &value, LocateOption option)
    : CellMatcher(rows, column, patternOf(value, option))
{
    const ColumnType type = rows.packet().schema()[column].type;
    if (value.isEmpty() || m_isText || type == ColumnType::Timestamp || option == LocateOption::Partial)
        return;
    m_number = packet::Decimal::parse(value.toStdString());
    m_possible = m_number.has_value();
}

CellMatcher::CellMatcher(const RowOverlay &rows, std::size_t column, const TextPattern &pattern)
    : m_rows(rows)
    , m_column(column)
    , m_pattern(pattern)
    , m_isPlain(rows.isPlain())
    , m_isText(rows.packet().schema()[column].type == ColumnType::Text)
{
    if (!pattern.isEmpty())
        compareDictionary();
}

void CellMatcher::compareDictionary()
{
    const packet::Dictionary *dictionary = m_rows.packet().dictionary(m_column);
    if (!dictionary)
        return;
    m_table.resize(dictionary->size());
    for (std::size_t index = 0; index < m_table.size(); ++index)
        m_table[index] = m_pattern.matches(dictionary->at(index));
    m_possible = !m_isPlain || std::ranges::find(m_table, 1) != m_table.end();
}

bool CellMatcher::matches(std::uint32_t row) const
{
    if (!m_isPlain && m_rows.isEdited(row))
        return matchesCell(row);
    const packet::Packet &packet = m_rows.packet();
    if (packet.isNull(m_column, row))
        return m_pattern.isEmpty();
    if (!m_table.empty())
        return m_table[packet.chunk(m_column, row).index(row % packet::Packet::blockRows)] != 0;
    return m_isText ? m_pattern.matches(packet.text(m_column, row)) : matchesCell(row);
}

bool CellMatcher::matchesCell(std::uint32_t row) const
{
    if (m_rows.isNull(m_column, row))
        return m_pattern.isEmpty();
    if (m_isText)
        return m_pattern.matches(m_rows.text(m_column, row));
    if (m_number)
        return m_rows.number(m_column, row) == m_number;
    std::string text;
    m_rows.appendText(m_column, row, text);
    return m_pattern.matches(text);
}

} // namespace platform
