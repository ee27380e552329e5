#include "packet/packet.h"

#include <algorithm>
#include <charconv>

namespace packet {

namespace {

char lower(char character) { return character >= 'A' && character <= 'Z' ? char(character + ('a' - 'A')) : character; }

bool sameName(std::string_view left, std::string_view right)
{
    return std::equal(
        left.begin(), left.end(), right.begin(), right.end(), [](char one, char other) { return lower(one) == lower(other); });
}

template <class Number>
void appendNumber(Number value, std::string &out)
{
    char buffer[32];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

} // namespace

Packet::Packet(
    std::vector<Field> schema, std::vector<Block> blocks, std::vector<std::shared_ptr<const Dictionary>> dictionaries, bool truncated)
    : m_schema(std::move(schema))
    , m_blocks(std::move(blocks))
    , m_dictionaries(std::move(dictionaries))
    , m_truncated(truncated)
{
    m_dictionaries.resize(m_schema.size());
    for (const Block &block : m_blocks)
        m_rowCount += block.rows;
}

int Packet::indexOf(std::string_view name) const
{
    const auto found = std::find_if(m_schema.begin(), m_schema.end(), [&](const Field &field) { return sameName(field.name, name); });
    return found == m_schema.end() ? -1 : int(found - m_schema.begin());
}

std::size_t Packet::memoryBytes() const
{
    std::size_t bytes = 0;
    for (const Block &block : m_blocks) {
        for (const Chunk &chunk : block.columns)
            bytes += chunk.validity.size() + chunk.values.size() + chunk.offsets.size();
    }
    for (const auto &dictionary : m_dictionaries) {
        if (dictionary)
            bytes += dictionary->bytes.size() + dictionary->offsets.size() * sizeof(std::uint32_t);
    }
    return bytes;
}

std::string_view Packet::text(std::size_t column, std::size_t row) const
{
    const Chunk &cells = chunk(column, row);
    const std::size_t line = row % blockRows;
    if (cells.isNull(line))
        return {};
    if (m_dictionaries[column])
        return m_dictionaries[column]->at(cells.index(line));
    const auto *offsets = cells.offsets.as<std::uint32_t>();
    return { cells.values.as<char>() + offsets[line], offsets[line + 1] - offsets[line] };
}

std::int64_t Packet::integer(std::size_t column, std::size_t row) const
{
    const Chunk &cells = chunk(column, row);
    return cells.isNull(row % blockRows) ? 0 : cells.values.as<std::int64_t>()[row % blockRows];
}

double Packet::real(std::size_t column, std::size_t row) const
{
    const Chunk &cells = chunk(column, row);
    if (m_schema[column].type != ColumnType::Float64)
        return decimal(column, row).toDouble();
    return cells.isNull(row % blockRows) ? 0 : cells.values.as<double>()[row % blockRows];
}

Decimal Packet::decimal(std::size_t column, std::size_t row) const
{
    const Chunk &cells = chunk(column, row);
    return cells.isNull(row % blockRows) ? Decimal {} : Decimal { cells.units(row % blockRows), cells.scale };
}

void Packet::appendText(std::size_t column, std::size_t row, std::string &out) const
{
    if (isNull(column, row))
        return;
    switch (m_schema[column].type) {
    case ColumnType::Text:
        out += text(column, row);
        return;
    case ColumnType::Int64:
        appendNumber(integer(column, row), out);
        return;
    case ColumnType::Decimal:
        out += decimal(column, row).toString();
        return;
    case ColumnType::Float64:
        appendNumber(real(column, row), out);
        return;
    case ColumnType::Timestamp:
        appendTimestamp(integer(column, row), out);
        return;
    }
}

} // namespace packet
