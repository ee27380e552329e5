#include "platform/dataset/pinyin.h"

#include <QFile>
#include <QHash>
#include <QList>

#include <algorithm>
#include <cstring>

namespace platform {

struct Pinyin::Group {
    QByteArray syllable; ///< with the number of its tone; "-" where there is none
    QString characters;
    Reading first = 0;

    Reading reading(QChar character) const { return Reading(first + characters.indexOf(character)); }
};

/// A character or a name with a group for each of its readings.
struct Pinyin::Entry {
    QString text;
    std::vector<std::size_t> groups;
};

namespace {

QByteArray contentOf(const QString &resource)
{
    QFile file(resource);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// Calls `visit` with the words of each line that has some and is no comment.
template <class Visit>
void forEachLine(const QByteArray &text, Visit visit)
{
    for (const QByteArray &line : text.split('\n')) {
        if (!line.startsWith('#') && !line.trimmed().isEmpty())
            visit(line.simplified().split(' '));
    }
}

/// The character of three bytes that begins at `at`; 0 when there is none.
char16_t characterAt(std::string_view text, std::size_t at)
{
    const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(text[at + offset]); };
    if (byte(0) >> 4 != 0xE || text.size() - at < 3 || byte(1) >> 6 != 2 || byte(2) >> 6 != 2)
        return 0;
    return char16_t((byte(0) & 0xF) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
}

/// E4 has no bytes below 0x80 behind it in any text, so that this is the key of no other character.
char *writeKey(std::uint16_t reading, char *place)
{
    *place++ = '\xE4';
    *place++ = char(reading >> 8);
    *place++ = char(reading & 0xFF);
    return place;
}

} // namespace

const Pinyin &Pinyin::table()
{
    static const Pinyin table(
        contentOf(QStringLiteral(":/kelvara/pinyin/hanzi.txt")), contentOf(QStringLiteral(":/kelvara/pinyin/readings.txt")));
    return table;
}

Pinyin::Pinyin(const QByteArray &characters, const QByteArray &readings)
    : m_startsName(0x10000)
{
    auto groups = readGroups(characters);
    const auto entries = readEntries(readings, groups);
    number(groups);
    for (const Entry &entry : entries) {
        std::vector<Reading> chosen;
        for (std::size_t at = 0; at < entry.groups.size(); ++at)
            chosen.push_back(groups[entry.groups[at]].reading(entry.text[entry.text.size() == 1 ? 0 : qsizetype(at)]));
        const char16_t first = entry.text[0].unicode();
        if (entry.text.size() == 1) {
            prefer(first, chosen);
        } else {
            m_names[first].push_back({ entry.text.toStdString(), std::move(chosen) });
            m_startsName[first] = true;
        }
    }
    for (auto &[first, names] : m_names)
        std::ranges::sort(names, std::greater(), [](const Name &name) { return name.text.size(); });
}

std::vector<Pinyin::Group> Pinyin::readGroups(const QByteArray &characters)
{
    std::vector<Group> groups;
    std::vector<bool> known(0x10000);
    std::size_t count = 0;
    forEachLine(characters, [&](const QList<QByteArray> &words) {
        if (words.size() != 2 || (words[0] != "-" && !QByteArrayView("12345").contains(words[0].back()))) {
            ++m_faultCount;
            return;
        }
        Group group { words[0], {}, 0 };
        for (const QChar character : QString::fromUtf8(words[1])) {
            if (known[character.unicode()] || character.unicode() < 0x3000 || character.isSurrogate() || ++count > mostReadings)
                ++m_faultCount;
            else
                group.characters += character;
            known[character.unicode()] = true;
        }
        groups.push_back(std::move(group));
    });
    return groups;
}

/// Adds the further readings of characters to the groups, behind the characters that are read so in the first place.
std::vector<Pinyin::Entry> Pinyin::readEntries(const QByteArray &readings, std::vector<Group> &groups)
{
    QHash<QByteArray, std::size_t> groupOf;
    QString known;
    std::size_t count = 0;
    for (std::size_t group = 0; group < groups.size(); ++group) {
        groupOf.insert(groups[group].syllable, group);
        known += groups[group].characters;
        count += std::size_t(groups[group].characters.size());
    }
    std::vector<bool> isKnown(0x10000);
    for (const QChar character : std::as_const(known))
        isKnown[character.unicode()] = true;

    std::vector<Entry> entries;
    forEachLine(readings, [&](const QList<QByteArray> &words) {
        Entry entry { QString::fromUtf8(words[0]), {} };
        const bool fits = entry.text.size() == 1 ? words.size() > 1 : words.size() - 1 == entry.text.size();
        const bool canBeRead = std::ranges::all_of(entry.text, [&](QChar character) { return isKnown[character.unicode()]; })
            && std::all_of(words.begin() + 1, words.end(), [&](const QByteArray &word) { return groupOf.contains(word); });
        if (!fits || !canBeRead || count + std::size_t(words.size()) > mostReadings) {
            ++m_faultCount;
            return;
        }
        for (qsizetype at = 0; at + 1 < words.size(); ++at) {
            const QChar character = entry.text[entry.text.size() == 1 ? 0 : at];
            Group &group = groups[groupOf[words[at + 1]]];
            entry.groups.push_back(groupOf[words[at + 1]]);
            if (!group.characters.contains(character)) {
                group.characters += character;
                ++count;
            }
        }
        entries.push_back(std::move(entry));
    });
    return entries;
}

void Pinyin::number(std::vector<Group> &groups)
{
    m_syllables = { std::string() };
    m_syllableOf = { 0 };
    for (Group &group : groups) {
        group.first = Reading(m_syllableOf.size());
        const std::string letters = group.syllable.left(group.syllable.size() - 1).toStdString();
        if (letters != m_syllables.back())
            m_syllables.push_back(letters);
        for (const QChar character : std::as_const(group.characters)) {
            const auto reading = Reading(m_syllableOf.size());
            m_syllableOf.push_back(std::uint16_t(m_syllables.size() - 1));
            Reading &only = m_only[character.unicode()];
            if (only != 0 && only != several)
                m_further[character.unicode()].push_back(only);
            if (only != 0)
                m_further[character.unicode()].push_back(reading);
            only = only == 0 ? reading : several;
            m_initials[character.unicode()] |= letters.empty() ? 0 : letterBit(letters.front());
        }
    }
}

void Pinyin::prefer(char16_t character, const std::vector<Reading> &readings)
{
    if (m_only[character] != several)
        return;
    auto &all = m_further[character];
    std::erase_if(all, [&](Reading reading) { return std::ranges::find(readings, reading) != readings.end(); });
    all.insert(all.begin(), readings.begin(), readings.end());
}

bool Pinyin::mayHoldHan(std::string_view text)
{
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; at + sizeof word <= text.size(); at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (word & highBits)
            return true;
    }
    word = 0;
    std::memcpy(&word, text.data() + at, text.size() - at);
    return word & highBits;
}

const Pinyin::Name *Pinyin::nameAt(char16_t first, std::string_view text) const
{
    const auto &names = m_names.find(first)->second;
    const auto found = std::ranges::find_if(names, [&](const Name &name) { return text.starts_with(name.text); });
    return found == names.end() ? nullptr : &*found;
}

void Pinyin::appendSortKey(std::string_view text, std::string &key) const
{
    const std::size_t start = key.size();
    key += text;
    for (std::size_t at = 0; at < text.size();) {
        const char16_t character = characterAt(text, at);
        if (m_only[character] == 0) {
            ++at;
            continue;
        }
        char *place = key.data() + start + at;
        const Name *name = m_startsName[character] ? nameAt(character, text.substr(at)) : nullptr;
        for (const Reading reading : name ? std::span(name->readings) : readings(character).first(1)) {
            place = writeKey(reading, place);
            at += 3;
        }
    }
}

} // namespace platform
