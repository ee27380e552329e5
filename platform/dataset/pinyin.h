#pragma once

#include <QByteArray>

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {

/// How Han characters are read, and their order. A reading is one character read in one way, known by a number from 1 on; the
/// numbers order as a dictionary does: by syllable, by tone, then by strokes.
class Pinyin {
public:
    using Reading = std::uint16_t;

    /// The table that the program carries, read when first asked for; for every thread.
    static const Pinyin &table();

    /// Reads a table from texts like the files beside this one: `characters` holds lines of a syllable and the characters
    /// that are read so, `readings` lines of a character, or a name, and its readings. Lines that are faulty count for nothing.
    Pinyin(const QByteArray &characters, const QByteArray &readings);

    int faultCount() const { return m_faultCount; }
    /// The most usual one first; none for what is no Han character of the table.
    std::span<const Reading> readings(char16_t character) const
    {
        const Reading &only = m_only[character];
        return only == 0 ? std::span<const Reading>() : only == several ? furtherReadings(character) : std::span(&only, 1);
    }
    /// The letters that the readings of a character begin with, as letterBit names them; 0 for what is no Han character of the table.
    std::uint32_t initials(char16_t character) const { return m_initials[character]; }
    /// A bit for each small Latin letter; 0 for anything else.
    static constexpr std::uint32_t letterBit(char letter)
    {
        return letter >= 'a' && letter <= 'z' ? std::uint32_t(1) << (letter - 'a') : 0;
    }
    /// Small letters without tone, v for ü.
    std::string_view syllable(Reading reading) const { return m_syllables[m_syllableOf[reading]]; }

    /// False only for texts that are their own sort keys.
    static bool mayHoldHan(std::string_view text);
    /// Appends a key as long as `text` (UTF-8): keys order by their bytes as the texts do for a Chinese reader, and equal ones
    /// mean equal texts. Names of the table, the longest first, decide how their characters are read.
    void appendSortKey(std::string_view text, std::string &key) const;

private:
    struct Group;
    struct Entry;
    struct Name {
        std::string text;
        std::vector<Reading> readings;
    };
    static constexpr Reading several = 0xFFFF;
    static constexpr std::size_t mostReadings = 0x7FFF; ///< so that no sort key of a Han character looks like another character

    std::vector<Group> readGroups(const QByteArray &characters);
    std::vector<Entry> readEntries(const QByteArray &readings, std::vector<Group> &groups);
    void number(std::vector<Group> &groups);
    void prefer(char16_t character, const std::vector<Reading> &readings);
    std::span<const Reading> furtherReadings(char16_t character) const { return m_further.find(character)->second; }
    const Name *nameAt(char16_t first, std::string_view text) const;

    std::array<Reading, 0x10000> m_only {}; ///< the reading of each character, 0 for none, `several` for those in m_further
    std::array<std::uint32_t, 0x10000> m_initials {}; ///< so that a search passes over most characters at a glance
    std::unordered_map<char16_t, std::vector<Reading>> m_further;
    std::vector<std::uint16_t> m_syllableOf; ///< index in m_syllables for each reading
    std::vector<std::string> m_syllables;
    std::unordered_map<char16_t, std::vector<Name>> m_names; ///< by their first character, the longest first
    std::vector<bool> m_startsName; ///< for each character
    int m_faultCount = 0;
};

} // namespace platform
