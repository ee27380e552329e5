#include "platform/dataset/column_sum.h"

#include <array>

namespace platform {

namespace {

constexpr std::size_t scaleCount = 39; ///< a decimal has at most 38 digits behind the point

/// Adds numbers that lie in 64 bits at various scales without aligning each of them.
class SumByScale {
public:
    void add(const packet::Chunk &chunk, std::size_t row)
    {
        if (chunk.isNull(row))
            return;
        if (chunk.width == sizeof(std::int64_t))
            m_units[std::size_t(chunk.scale)] += chunk.values.as<std::int64_t>()[row];
        else
            m_wide = m_wide + packet::Decimal { chunk.units(row), chunk.scale };
    }
    void addBlock(const packet::Chunk &chunk, std::size_t rows)
    {
        const auto *values = chunk.values.as<std::int64_t>();
        const auto *validity = chunk.validity.as<std::uint8_t>();
        packet::Int128 units = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            if (chunk.width != sizeof(std::int64_t))
                add(chunk, row);
            else
                units += validity ? values[row] * (validity[row >> 3] >> (row & 7) & 1) : values[row];
        }
        m_units[std::size_t(chunk.scale)] += units;
    }
    packet::Decimal total() const
    {
        packet::Decimal total = m_wide;
        for (int scale = 0; scale < int(m_units.size()); ++scale)
            total = total + packet::Decimal { m_units[std::size_t(scale)], scale };
        return total;
    }

private:
    std::array<packet::Int128, scaleCount> m_units {};
    packet::Decimal m_wide;
};

} // namespace

packet::Decimal sumOfColumn(const packet::Packet &packet, std::size_t column)
{
    SumByScale sum;
    for (const packet::Block &block : packet.blocks())
        sum.addBlock(block.columns[column], block.rows);
    return sum.total();
}

packet::Decimal sumOfColumn(const packet::Packet &packet, std::size_t column, std::span<const std::uint32_t> rows)
{
    SumByScale sum;
    for (const std::uint32_t row : rows)
        sum.add(packet.chunk(column, row), row % packet::Packet::blockRows);
    return sum.total();
}

} // namespace platform
