#include "platform/dataset/row_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <numeric>

using packet::ColumnType;

namespace {

struct Entry {
    std::uint64_t key;
    std::uint32_t item;
};

/// A stable radix sort that passes over the bytes only in which the keys differ.
void sortByKey(std::vector<Entry> &entries)
{
    if (entries.size() < 512) {
        std::ranges::stable_sort(entries, {}, &Entry::key);
        return;
    }
    std::uint64_t differing = 0;
    for (const Entry &entry : entries)
        differing |= entry.key ^ entries.front().key;
    std::vector<Entry> sorted(entries.size());
    for (int shift = 0; shift < 64; shift += 8) {
        if ((differing >> shift & 0xFF) == 0)
            continue;
        std::array<std::uint32_t, 256> starts {};
        for (const Entry &entry : entries)
            ++starts[entry.key >> shift & 0xFF];
        std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), 0U);
        for (const Entry &entry : entries)
            sorted[starts[entry.key >> shift & 0xFF]++] = entry;
        entries.swap(sorted);
    }
}

/// The 8 bytes of a text from `skip` on as a number that orders like them.
std::uint64_t prefixKey(std::string_view text, std::size_t skip)
{
    std::uint64_t key = 0;
    if (skip < text.size())
        std::memcpy(&key, text.data() + skip, std::min<std::size_t>(text.size() - skip, sizeof key));
    if constexpr (std::endian::native == std::endian::little)
        key = __builtin_bswap64(key);
    return key;
}

std::size_t commonPrefix(std::span<const std::string_view> texts, std::span<const Entry> entries, std::size_t skip)
{
    const std::string_view first = texts[entries.front().item];
    std::size_t common = first.size();
    for (const Entry &entry : entries) {
        const std::string_view text = texts[entry.item];
        common = std::min(common, text.size());
        common = std::size_t(std::mismatch(first.begin() + std::ptrdiff_t(std::min(skip, common)), first.begin() + std::ptrdiff_t(common),
                                 text.begin() + std::ptrdiff_t(std::min(skip, common)))
                                 .first
            - first.begin());
    }
    return common;
}

/// Sorts by code point: by the 8 bytes behind what all texts share, then within the runs that are still equal.
void sortTexts(std::span<const std::string_view> texts, std::span<Entry> run, std::size_t skip)
{
    if (run.size() < 64) {
        std::ranges::stable_sort(run, {}, [&](const Entry &entry) { return texts[entry.item]; });
        return;
    }
    skip = commonPrefix(texts, run, skip);
    std::vector<Entry> entries(run.begin(), run.end());
    for (Entry &entry : entries)
        entry.key = prefixKey(texts[entry.item], skip);
    sortByKey(entries);
    std::ranges::copy(entries, run.begin());
    for (std::size_t start = 0, end = 0; start < run.size(); start = end) {
        bool longer = false;
        for (end = start; end < run.size() && entries[end].key == entries[start].key; ++end)
            longer = longer || texts[entries[end].item].size() > skip + sizeof(std::uint64_t);
        if (longer && end - start > 1)
            sortTexts(texts, run.subspan(start, end - start), skip + sizeof(std::uint64_t));
    }
}

/// Dense ranks of items that stand in sorted order.
template <class Equal>
std::vector<std::uint32_t> denseRanks(const std::vector<Entry> &sorted, Equal equal)
{
    std::vector<std::uint32_t> ranks(sorted.size());
    std::uint32_t rank = 0;
    for (std::size_t at = 1; at < sorted.size(); ++at) {
        rank += equal(sorted[at - 1], sorted[at]) ? 0 : 1;
        ranks[sorted[at].item] = rank;
    }
    return ranks;
}

std::vector<Entry> numbered(std::size_t count)
{
    std::vector<Entry> entries(count);
    for (std::size_t item = 0; item < count; ++item)
        entries[item] = { 0, std::uint32_t(item) };
    return entries;
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
        if (__builtin_mul_overflow(units, packet::Int128(10), &units))
            return {};
    }
    if (number.scale > scale || units <= std::numeric_limits<std::int64_t>::min() || units > std::numeric_limits<std::int64_t>::max())
        return {};
    return std::int64_t(units);
}

/// Gives the entries of rows keys that order like their values in one column, 0 for null.
class ColumnKeys {
public:
    ColumnKeys(const RowOverlay &rows, std::size_t column, std::vector<Entry> &entries)
        : m_rows(rows)
        , m_column(column)
        , m_entries(entries)
    {
    }

    void fill()
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
        else if (!fillNumbers(field.scale))
            fillDecimals();
    }

private:
    template <class Key>
    void fillWith(Key key)
    {
        for (Entry &entry : m_entries)
            entry.key = m_rows.isNull(m_column, entry.item) ? 0 : key(entry.item);
    }

    void fillFromDictionary(const packet::Dictionary &dictionary)
    {
        std::vector<std::string_view> texts(dictionary.size());
        for (std::size_t index = 0; index < texts.size(); ++index)
            texts[index] = dictionary.at(index);
        const auto ranks = rankTexts(texts);
        const packet::Packet &packet = m_rows.packet();
        for (Entry &entry : m_entries) {
            const packet::Chunk &chunk = packet.chunk(m_column, entry.item);
            const std::size_t row = entry.item % packet::Packet::blockRows;
            entry.key = chunk.isNull(row) ? 0 : ranks[chunk.index(row)] + 1;
        }
    }

    void fillTexts()
    {
        std::vector<std::string_view> texts(m_entries.size());
        for (std::size_t at = 0; at < texts.size(); ++at)
            texts[at] = m_rows.text(m_column, m_entries[at].item);
        const auto ranks = rankTexts(texts);
        for (std::size_t at = 0; at < texts.size(); ++at)
            m_entries[at].key = texts[at].empty() ? 0 : ranks[at] + 1;
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
        std::vector<packet::Decimal> numbers(m_entries.size());
        for (std::size_t at = 0; at < numbers.size(); ++at)
            numbers[at] = m_rows.decimal(m_column, m_entries[at].item);
        std::vector<Entry> sorted = numbered(numbers.size());
        std::ranges::stable_sort(sorted, {}, [&](const Entry &entry) { return numbers[entry.item]; });
        const auto ranks
            = denseRanks(sorted, [&](const Entry &left, const Entry &right) { return numbers[left.item] == numbers[right.item]; });
        for (std::size_t at = 0; at < numbers.size(); ++at)
            m_entries[at].key = m_rows.isNull(m_column, m_entries[at].item) ? 0 : ranks[at] + 1;
    }

    const RowOverlay &m_rows;
    std::size_t m_column;
    std::vector<Entry> &m_entries;
};

} // namespace

std::vector<std::uint32_t> rankTexts(std::span<const std::string_view> texts)
{
    std::vector<Entry> sorted = numbered(texts.size());
    sortTexts(texts, sorted, 0);
    // Equal texts have come through the same runs and so carry the same key.
    return denseRanks(
        sorted, [&](const Entry &left, const Entry &right) { return left.key == right.key && texts[left.item] == texts[right.item]; });
}

void orderRows(const RowOverlay &rows, std::span<const OrderKey> keys, std::vector<std::uint32_t> &order)
{
    std::vector<Entry> entries(order.size());
    for (std::size_t at = 0; at < order.size(); ++at)
        entries[at].item = order[at];
    for (std::size_t key = keys.size(); key-- > 0;) {
        ColumnKeys(rows, keys[key].column, entries).fill();
        if (keys[key].descending) {
            for (Entry &entry : entries)
                entry.key = ~entry.key;
        }
        sortByKey(entries);
    }
    for (std::size_t at = 0; at < order.size(); ++at)
        order[at] = entries[at].item;
}
