#include "platform/dataset/cell_matcher.h"

#include <algorithm>

using packet::ColumnType;

CellMatcher::CellMatcher(const RowOverlay &rows, std::size_t column, const QString &value, LocateOption option)
    : m_rows(rows)
    , m_column(column)
    , m_value(value)
    , m_text(value.toStdString())
    , m_option(option)
    , m_isPlain(rows.isPlain())
{
    const ColumnType type = rows.packet().schema()[column].type;
    m_isText = type == ColumnType::Text;
    if (m_text.empty())
        return;
    if (!m_isText && type != ColumnType::Timestamp && option != LocateOption::Partial) {
        m_number = packet::Decimal::parse(m_text);
        m_possible = m_number.has_value();
    }
    if (const packet::Dictionary *dictionary = rows.packet().dictionary(column)) {
        m_table.resize(dictionary->size());
        for (std::size_t index = 0; index < m_table.size(); ++index)
            m_table[index] = matchesText(dictionary->at(index));
        m_possible = !m_isPlain || std::ranges::find(m_table, 1) != m_table.end();
    }
}

bool CellMatcher::matches(std::uint32_t row) const
{
    if (!m_isPlain && m_rows.isEdited(row))
        return matchesCell(row);
    const packet::Packet &packet = m_rows.packet();
    if (packet.isNull(m_column, row))
        return m_text.empty();
    if (!m_table.empty())
        return m_table[packet.chunk(m_column, row).index(row % packet::Packet::blockRows)] != 0;
    return m_isText ? matchesText(packet.text(m_column, row)) : matchesCell(row);
}

bool CellMatcher::matchesCell(std::uint32_t row) const
{
    if (m_rows.isNull(m_column, row))
        return m_text.empty();
    if (m_isText)
        return matchesText(m_rows.text(m_column, row));
    if (m_number)
        return m_rows.number(m_column, row) == m_number;
    std::string text;
    m_rows.appendText(m_column, row, text);
    return matchesText(text);
}

bool CellMatcher::matchesText(std::string_view text) const
{
    switch (m_option) {
    case LocateOption::Exact:
        return text == m_text;
    case LocateOption::CaseInsensitive:
        return QString::fromUtf8(text.data(), qsizetype(text.size())).compare(m_value, Qt::CaseInsensitive) == 0;
    case LocateOption::Partial:
        return text.starts_with(m_text);
    }
    return false;
}
