#include "platform/dataset/row_order.h"

#include "platform/dataset/text_order.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <optional>

using namespace platform;

using packet::ColumnType;

namespace {

std::vector<std::string_view> textsOf(const RowOverlay &rows, std::size_t column, const std::vector<std::uint32_t> &order)
{
    std::vector<std::string_view> texts;
    texts.reserve(order.size());
    for (const std::uint32_t row : order)
        texts.push_back(rows.text(column, row));
    return texts;
}

constexpr std::uint64_t signBit = std::uint64_t(1) << 63;

std::uint64_t integerKey(std::int64_t value) { return std::uint64_t(value) ^ signBit; }

std::uint64_t realKey(double value)
{
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    return bits & signBit ? ~bits : bits | signBit;
}

/// The number at a larger scale when it fits; the smallest integer is left to null.
std::optional<std::int64_t> unitsAt(packet::Decimal number, int scale)
{
    packet::Int128 units = number.units;
    for (int step = number.scale; step < scale; ++step) {
        if (packet::multiplyOverflows(units, 10, units))
            return {};
    }
    if (number.scale > scale || units <= std::numeric_limits<std::int64_t>::min() || units > std::numeric_limits<std::int64_t>::max())
        return {};
    return std::int64_t(units);
}

/// Makes keys that order like the values of rows in one column, 0 for null.
class ColumnKeys {
public:
    ColumnKeys(const RowOverlay &rows, std::size_t column, const std::vector<std::uint32_t> &order)
        : m_rows(rows)
        , m_column(column)
        , m_order(order)
    {
        m_keys.values.resize(order.size());
    }

    OrderKeys take()
    {
        const packet::Field &field = m_rows.packet().schema()[m_column];
        if (field.type == ColumnType::Text && field.dictionary && m_rows.isPlain())
            fillFromDictionary(*m_rows.packet().dictionary(m_column));
        else if (field.type == ColumnType::Text)
            fillTexts();
        else if (field.type == ColumnType::Timestamp)
            fillWith([&](std::uint32_t row) { return integerKey(m_rows.seconds(m_column, row)); });
        else if (field.type == ColumnType::Float64)
            fillWith([&](std::uint32_t row) { return realKey(m_rows.real(m_column, row)); });
        else if (!fillPlainNumbers(field.scale) && !fillNumbers(field.scale))
            fillDecimals();
        m_keys.startAtOne();
        return std::move(m_keys);
    }

private:
    template <class Key>
    void fillWith(Key key)
    {
        for (std::size_t at = 0; at < m_order.size(); ++at)
            m_keys.values[at] = m_rows.isNull(m_column, m_order[at]) ? 0 : key(m_order[at]);
    }

    /// From the packet alone: `key` takes a chunk and a row in it.
    template <class Key>
    void fillFromPacket(Key key)
    {
        const packet::Packet &packet = m_rows.packet();
        for (std::size_t at = 0; at < m_order.size(); ++at) {
            const packet::Chunk &chunk = packet.chunk(m_column, m_order[at]);
            const std::size_t row = m_order[at] % packet::Packet::blockRows;
            m_keys.values[at] = chunk.isNull(row) ? 0 : key(chunk, row);
        }
    }

    void fillFromDictionary(const packet::Dictionary &dictionary)
    {
        std::vector<std::string_view> texts(dictionary.size());
        for (std::size_t index = 0; index < texts.size(); ++index)
            texts[index] = dictionary.at(index);
        const auto ranks = rankTexts(texts);
        fillFromPacket([&](const packet::Chunk &chunk, std::size_t row) { return ranks[chunk.index(row)] + 1; });
    }

    void fillTexts()
    {
        const auto texts = textsOf(m_rows, m_column, m_order);
        const auto ranks = rankTexts(texts);
        for (std::size_t at = 0; at < texts.size(); ++at)
            m_keys.values[at] = texts[at].empty() ? 0 : ranks[at] + 1;
    }

    /// Unedited integers that all have the column's scale already; false when there are others.
    bool fillPlainNumbers(int scale)
    {
        const auto fits = [&](const packet::Block &block) {
            const packet::Chunk &chunk = block.columns[m_column];
            return chunk.width == sizeof(std::int64_t) && chunk.scale == scale;
        };
        if (!m_rows.isPlain() || !std::ranges::all_of(m_rows.packet().blocks(), fits))
            return false;
        fillFromPacket([](const packet::Chunk &chunk, std::size_t row) { return integerKey(chunk.values.as<std::int64_t>()[row]); });
        return true;
    }

    /// Integers at the column's largest scale; false when one of them needs more than 64 bits or, edited, a larger scale.
    bool fillNumbers(int scale)
    {
        bool fits = true;
        fillWith([&](std::uint32_t row) {
            const auto units = unitsAt(m_rows.decimal(m_column, row), scale);
            fits = fits && units;
            return integerKey(units.value_or(0));
        });
        return fits;
    }

    void fillDecimals()
    {
        std::vector<packet::Decimal> numbers(m_order.size());
        for (std::size_t at = 0; at < numbers.size(); ++at)
            numbers[at] = m_rows.decimal(m_column, m_order[at]);
        Permutation permutation(numbers.size());
        std::iota(permutation.begin(), permutation.end(), 0U);
        std::ranges::stable_sort(permutation, {}, [&](std::uint32_t at) { return numbers[at]; });
        std::uint64_t rank = 1;
        for (std::size_t at = 0; at < permutation.size(); ++at) {
            rank += at > 0 && numbers[permutation[at]] != numbers[permutation[at - 1]];
            m_keys.values[permutation[at]] = m_rows.isNull(m_column, m_order[permutation[at]]) ? 0 : rank;
        }
    }

    const RowOverlay &m_rows;
    std::size_t m_column;
    const std::vector<std::uint32_t> &m_order;
    OrderKeys m_keys;
};

/// The order of rows by the plain texts of one column, without ranks in between.
Permutation permutationByText(const RowOverlay &rows, const OrderKey &key, const std::vector<std::uint32_t> &order)
{
    const auto texts = textsOf(rows, key.column, order);
    TextOrder sorted(texts);
    if (!key.descending)
        return std::move(sorted.permutation);
    Permutation descending;
    descending.reserve(order.size());
    for (std::size_t end = order.size(), begin = end; end > 0; end = begin) {
        do
            --begin;
        while (begin > 0 && !sorted.isNew[begin]);
        descending.insert(
            descending.end(), sorted.permutation.begin() + std::ptrdiff_t(begin), sorted.permutation.begin() + std::ptrdiff_t(end));
    }
    return descending;
}

Permutation permutationByKeys(const RowOverlay &rows, std::span<const OrderKey> keys, const std::vector<std::uint32_t> &order)
{
    OrderKeys combined { std::vector<std::uint64_t>(order.size()), 0 };
    for (const OrderKey &key : keys) {
        OrderKeys next = ColumnKeys(rows, key.column, order).take();
        if (key.descending)
            next.reverse();
        if (combined.bits == 0)
            combined = std::move(next);
        else
            combined.refine(std::move(next));
    }
    return combined.sortPermutation();
}

} // namespace

namespace platform {

std::vector<std::uint32_t> rankTexts(std::span<const std::string_view> texts)
{
    const TextOrder order(texts);
    std::vector<std::uint32_t> ranks(texts.size());
    std::uint32_t rank = 0;
    for (std::size_t at = 0; at < ranks.size(); ++at) {
        rank += at > 0 && order.isNew[at];
        ranks[order.permutation[at]] = rank;
    }
    return ranks;
}

void orderRows(const RowOverlay &rows, std::span<const OrderKey> keys, std::vector<std::uint32_t> &order)
{
    if (keys.empty())
        return;
    const packet::Field &first = rows.packet().schema()[keys.front().column];
    const bool byText = keys.size() == 1 && first.type == ColumnType::Text && !(first.dictionary && rows.isPlain());
    Permutation permutation = byText ? permutationByText(rows, keys.front(), order) : permutationByKeys(rows, keys, order);
    for (std::uint32_t &row : permutation)
        row = order[row];
    order = std::move(permutation);
}

} // namespace platform
