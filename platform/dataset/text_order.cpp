#include "platform/dataset/text_order.h"

#include "platform/dataset/pinyin.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <span>

namespace platform {

namespace {

/// The 8 bytes of a text from `skip` on as a number that orders like them.
std::uint64_t prefixKey(std::string_view text, std::size_t skip)
{
    std::uint64_t key = 0;
    if (skip + sizeof key <= text.size())
        std::memcpy(&key, text.data() + skip, sizeof key);
    else if (skip < text.size())
        std::memcpy(&key, text.data() + skip, text.size() - skip);
    if constexpr (std::endian::native == std::endian::little)
        key = __builtin_bswap64(key);
    return key;
}

/// The sort keys of texts in one piece of memory; texts that are their own keys stay where they are.
class SortKeys {
public:
    explicit SortKeys(std::span<const std::string_view> texts)
        : m_keys(texts)
    {
        std::vector<std::size_t> han;
        std::size_t bytes = 0;
        for (std::size_t item = 0; item < texts.size(); ++item) {
            if (Pinyin::mayHoldHan(texts[item])) {
                han.push_back(item);
                bytes += texts[item].size();
            }
        }
        if (han.empty())
            return;
        m_copies.assign(texts.begin(), texts.end());
        m_keys = m_copies;
        m_bytes.reserve(bytes);
        for (const std::size_t item : han) {
            const char *begin = m_bytes.data() + m_bytes.size();
            Pinyin::table().appendSortKey(texts[item], m_bytes);
            m_copies[item] = { begin, texts[item].size() };
        }
    }

    std::span<const std::string_view> all() const { return m_keys; }

private:
    std::span<const std::string_view> m_keys;
    std::vector<std::string_view> m_copies;
    std::string m_bytes;
};

/// Orders texts by their bytes.
class TextSorter {
public:
    TextSorter(std::span<const std::string_view> texts, Permutation &permutation, std::vector<std::uint8_t> &isNew)
        : m_texts(texts)
        , m_permutation(permutation)
        , m_isNew(isNew)
    {
    }

    /// By the 8 bytes behind what all texts of the run share, then within the runs that are still equal.
    void sort(std::size_t begin, std::size_t end, std::size_t skip)
    {
        if (end - begin < 64)
            return sortFew(begin, end);
        skip = std::max(skip, commonPrefix(begin, end));
        OrderKeys keys { std::vector<std::uint64_t>(end - begin) };
        for (std::size_t at = begin; at < end; ++at)
            keys.values[at - begin] = prefixKey(text(at), skip);
        keys.dropCommonBits();
        const std::vector<std::uint64_t> sorted = moveInOrder(begin, keys);
        for (std::size_t start = begin, next = begin; start < end; start = next) {
            for (next = start + 1; next < end && sorted[next - begin] == sorted[start - begin]; ++next)
                ;
            m_isNew[start] = true;
            if (next - start > 1)
                sortRest(start, next, skip + sizeof(std::uint64_t));
        }
    }

private:
    std::string_view text(std::size_t at) const { return m_texts[m_permutation[at]]; }

    std::size_t commonPrefix(std::size_t begin, std::size_t end) const
    {
        const std::string_view first = text(begin);
        std::size_t common = first.size();
        for (std::size_t at = begin + 1; at < end; ++at) {
            const std::string_view other = text(at);
            common = std::min(common, other.size());
            if (std::memcmp(first.data(), other.data(), common) != 0)
                common = std::size_t(std::ranges::mismatch(first.substr(0, common), other).in1 - first.begin());
        }
        return common;
    }

    /// Texts that are equal up to `skip`, where zeros behind an end may have passed for bytes.
    void sortRest(std::size_t begin, std::size_t end, std::size_t skip)
    {
        const std::size_t size = text(begin).size();
        bool isLonger = false;
        bool isSameSize = true;
        for (std::size_t at = begin; at < end; ++at) {
            isLonger = isLonger || text(at).size() > skip;
            isSameSize = isSameSize && text(at).size() == size;
        }
        if (isLonger)
            sort(begin, end, skip);
        else if (!isSameSize)
            sortFew(begin, end);
    }

    void sortFew(std::size_t begin, std::size_t end)
    {
        const auto run = std::span(m_permutation).subspan(begin, end - begin);
        std::ranges::stable_sort(run, {}, [&](std::uint32_t item) { return m_texts[item]; });
        for (std::size_t at = begin; at < end; ++at)
            m_isNew[at] = at == begin || text(at) != text(at - 1);
    }

    /// Moves the run that starts at `begin` into the order of its keys, and returns these in theirs.
    std::vector<std::uint64_t> moveInOrder(std::size_t begin, const OrderKeys &keys)
    {
        const Permutation order = keys.sortPermutation();
        const auto run = m_permutation.begin() + std::ptrdiff_t(begin);
        const std::vector<std::uint32_t> before(run, run + std::ptrdiff_t(order.size()));
        std::vector<std::uint64_t> sorted(order.size());
        for (std::size_t at = 0; at < order.size(); ++at) {
            m_permutation[begin + at] = before[order[at]];
            sorted[at] = keys.values[order[at]];
        }
        return sorted;
    }

    std::span<const std::string_view> m_texts;
    Permutation &m_permutation;
    std::vector<std::uint8_t> &m_isNew;
};

} // namespace

TextOrder::TextOrder(std::span<const std::string_view> texts)
    : permutation(texts.size())
    , isNew(texts.size())
{
    std::iota(permutation.begin(), permutation.end(), 0U);
    const SortKeys keys(texts);
    TextSorter(keys.all(), permutation, isNew).sort(0, permutation.size(), 0);
}

} // namespace platform
