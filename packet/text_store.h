#pragma once

#include "packet/packet.h"

#include <limits>
#include <memory>

namespace packet {

/// The open rows of a Text column. Texts are gathered as they come and coded into the dictionary some rows at a time, so that
/// one dictionary at a time is in the processor's cache. When the texts of the first block hardly repeat, the column becomes
/// plain text for good.
class TextStore {
public:
    /// After so many rows settle() is called, in between.
    static constexpr std::uint32_t settledRows = 1024;

    /// Adds a text that is not empty. False when the texts of one block would exceed 4 GB.
    bool add(std::string_view text)
    {
        if (m_size + text.size() + padding > m_bytes.size() && !grow(text.size()))
            return false;
        copy(m_bytes.data() + m_size, text);
        m_size += text.size();
        m_offsets[++m_rows] = std::uint32_t(m_size);
        return true;
    }
    void addNull()
    {
        m_offsets[m_rows + 1] = std::uint32_t(m_size);
        ++m_rows;
    }
    void beginBlock();
    /// Codes the rows gathered so far. Throws std::length_error when the dictionary would exceed 4 GB.
    void settle();
    Chunk seal();

    /// Before the first text: the column is plain text for good.
    void stayPlain() { m_plain = m_decided = true; }
    bool usesDictionary() const { return !m_plain; }
    const Dictionary &dictionary() const { return m_dictionary; }
    std::shared_ptr<const Dictionary> takeDictionary();

private:
    /// Texts of up to 16 bytes are told apart by this alone, longer ones by their bytes as well.
    struct Key {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        std::uint32_t size = 0;
        bool operator==(const Key &) const = default;
    };
    struct Slot {
        Key key {};
        std::uint32_t index = 0; ///< one more than the number in the dictionary; 0 = free
    };
    static constexpr std::size_t padding = 16; ///< bytes behind the texts that may be read

    static void copy(char *to, std::string_view text)
    {
        // The usual sizes without a call.
        if (text.size() >= 8 && text.size() <= 16) {
            std::memcpy(to, text.data(), 8);
            std::memcpy(to + text.size() - 8, text.data() + text.size() - 8, 8);
        } else {
            std::memcpy(to, text.data(), text.size());
        }
    }
    static inline Key keyOf(const char *text, std::size_t size);
    static inline std::size_t hashOf(const Key &key);
    void reserveRows();
    bool grow(std::size_t size);
    inline bool matches(const Slot &slot, const Key &key, const char *text) const;
    inline std::size_t slotOf(const Key &key, const char *text) const;
    inline std::uint32_t numberOf(const Key &key, const char *text);
    void weigh();
    void addNew(std::size_t slot, const Key &key, const char *text);
    void growSlots();
    bool repeatsTooLittle() const { return m_dictionary.size() * 2 > m_texts; }
    void turnPlain();
    Chunk sealPlain();
    Chunk sealIndexes();

    std::vector<std::uint32_t> m_offsets; ///< of the rows gathered
    std::vector<char> m_bytes; ///< larger than its use
    std::size_t m_size = 0;
    std::size_t m_rows = 0;
    std::vector<std::uint32_t> m_indexes; ///< of the rows coded before them
    std::vector<bool> m_nulls; ///< which of these are null; in the first block
    std::size_t m_texts = 0; ///< coded in the first block
    std::vector<Slot> m_slots;
    Dictionary m_dictionary {};
    bool m_plain = false;
    bool m_decided = false;
};

} // namespace packet
