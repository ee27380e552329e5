#include "packet/text_store.h"

#include <algorithm>
#include <stdexcept>

namespace packet {

namespace {

constexpr std::size_t earlyCheck = 1024; ///< texts after which a column that hardly repeats stops filling its dictionary
constexpr std::size_t largestSize = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t firstSlots = 64;

std::uint64_t load(const char *bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The first `size` bytes at `bytes`, of which eight can be read.
inline std::uint64_t loadPart(const char *bytes, std::size_t size)
{
    return size >= 8 ? load(bytes) : load(bytes) & ((std::uint64_t(1) << size * 8) - 1);
}

inline std::uint64_t mixed(std::uint64_t word)
{
    word *= 0x9E3779B97F4A7C15u;
    return word ^ word >> 29;
}

} // namespace

inline TextStore::Key TextStore::keyOf(const char *text, std::size_t size)
{
    Key key { .size = std::uint32_t(size) };
    if (size <= 8) {
        key.first = loadPart(text, size);
    } else if (size <= 16) {
        key.first = load(text);
        key.last = loadPart(text + 8, size - 8);
    } else {
        for (std::size_t position = 0; position + 8 < size; position += 8)
            key.first = mixed(key.first) + load(text + position);
        key.last = load(text + size - 8);
    }
    return key;
}

inline std::size_t TextStore::hashOf(const Key &key) { return std::size_t(mixed(mixed(key.first) + key.last + key.size) >> 7); }

inline bool TextStore::matches(const Slot &slot, const Key &key, const char *text) const
{
    return slot.key == key && (key.size <= 16 || m_dictionary.at(slot.index - 1) == std::string_view(text, key.size));
}

/// The slot that holds the text, or the free one where it belongs.
inline std::size_t TextStore::slotOf(const Key &key, const char *text) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hashOf(key) & mask;
    while (m_slots[slot].index != 0 && !matches(m_slots[slot], key, text))
        slot = (slot + 1) & mask;
    return slot;
}

void TextStore::beginBlock()
{
    reserveRows();
    m_offsets[0] = 0;
    m_rows = 0;
    m_size = 0;
    m_indexes.clear();
    m_nulls.clear();
}

/// While a dictionary is filled, no more than settledRows rows lie here; many columns of few rows then take little memory.
void TextStore::reserveRows() { m_offsets.resize((m_plain ? Packet::blockRows : settledRows) + 1); }

bool TextStore::grow(std::size_t size)
{
    if (m_size + size > largestSize)
        return false;
    m_bytes.resize(std::max(m_bytes.size() * 2, m_size + size + padding));
    return true;
}

/// Null is coded as 0.
void TextStore::settle()
{
    if (m_plain)
        return;
    if (m_slots.empty())
        m_slots.resize(firstSlots);
    const std::size_t coded = m_indexes.size();
    m_indexes.resize(coded + m_rows);
    std::uint32_t *index = m_indexes.data() + coded;
    const char *text = m_bytes.data();
    Slot previous;
    for (std::size_t row = 0; row < m_rows; ++row, ++index) {
        const std::size_t size = m_offsets[row + 1] - m_offsets[row];
        if (size == 0)
            continue;
        const Key key = keyOf(text, size);
        if (!matches(previous, key, text))
            previous = { key, numberOf(key, text) + 1 };
        *index = previous.index - 1;
        text += size;
    }
    if (!m_decided)
        return weigh();
    m_rows = 0;
    m_size = 0;
}

/// The number of the text in the dictionary, where it is put when it is new.
inline std::uint32_t TextStore::numberOf(const Key &key, const char *text)
{
    const std::size_t slot = slotOf(key, text);
    if (m_slots[slot].index != 0)
        return m_slots[slot].index - 1;
    addNew(slot, key, text);
    return std::uint32_t(m_dictionary.size() - 1);
}

/// In the first block: what has been coded counts for or against the dictionary.
void TextStore::weigh()
{
    for (std::size_t row = 0; row < m_rows; ++row) {
        const bool isNull = m_offsets[row + 1] == m_offsets[row];
        m_nulls.push_back(isNull);
        m_texts += !isNull;
    }
    m_rows = 0;
    m_size = 0;
    // Nearly all different: the rest of the block is not worth the trouble.
    if (m_texts >= earlyCheck && m_dictionary.size() * 8 > m_texts * 7)
        turnPlain();
}

void TextStore::addNew(std::size_t slot, const Key &key, const char *text)
{
    if (m_dictionary.bytes.size() + key.size > largestSize)
        throw std::length_error("packet: dictionary of more than 4 GB");
    m_dictionary.bytes.append(text, key.size);
    m_dictionary.offsets.push_back(std::uint32_t(m_dictionary.bytes.size()));
    m_slots[slot] = { key, std::uint32_t(m_dictionary.size()) };
    if (m_dictionary.size() * 2 > m_slots.size())
        growSlots();
}

void TextStore::growSlots()
{
    std::vector<Slot> old(m_slots.size() * 2);
    old.swap(m_slots);
    const std::size_t mask = m_slots.size() - 1;
    for (const Slot &entry : old) {
        if (entry.index == 0)
            continue;
        std::size_t slot = hashOf(entry.key) & mask;
        while (m_slots[slot].index != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = entry;
    }
}

/// Only in the first block: the coded rows become plain text.
void TextStore::turnPlain()
{
    m_plain = true;
    reserveRows();
    for (std::size_t row = 0; row < m_indexes.size(); ++row) {
        if (m_nulls[row])
            addNull();
        else
            add(m_dictionary.at(m_indexes[row]));
    }
    m_indexes = {};
    m_nulls = {};
    m_slots = {};
    m_dictionary = {};
}

Chunk TextStore::seal()
{
    settle();
    if (!m_plain && !m_decided && repeatsTooLittle())
        turnPlain();
    m_decided = true;
    return m_plain ? sealPlain() : sealIndexes();
}

Chunk TextStore::sealPlain()
{
    const std::size_t capacity = m_bytes.size();
    m_bytes.resize(m_size);
    m_offsets.resize(m_rows + 1);
    if (m_size < capacity - capacity / 4)
        m_bytes.shrink_to_fit();
    if (m_rows < Packet::blockRows)
        m_offsets.shrink_to_fit();
    Chunk chunk;
    chunk.values = Buffer::adopt(std::move(m_bytes));
    chunk.offsets = Buffer::adopt(std::move(m_offsets));
    // The next block will be of about the same size.
    m_bytes = std::vector<char>(m_size + m_size / 16 + padding);
    m_offsets = {};
    return chunk;
}

Chunk TextStore::sealIndexes()
{
    Chunk chunk;
    chunk.width = m_dictionary.size() <= 65536 ? 2 : 4;
    if (chunk.width == 2)
        chunk.values = Buffer::adopt(std::vector<std::uint16_t>(m_indexes.begin(), m_indexes.end()));
    else
        chunk.values = Buffer::adopt(std::vector<std::uint32_t>(m_indexes));
    return chunk;
}

std::shared_ptr<const Dictionary> TextStore::takeDictionary()
{
    m_dictionary.bytes.shrink_to_fit();
    m_dictionary.offsets.shrink_to_fit();
    return std::make_shared<const Dictionary>(std::move(m_dictionary));
}

} // namespace packet
