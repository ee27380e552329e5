// Writes the table of Han characters from ICU's data: a line for each syllable with its tone, as "zhang3", followed by the
// characters that are read so, in the order of ICU's pinyin collation; last, after "-", those without a reading. The readings
// are those of ICU's Han-Latin transliterator; ü is written v, the neutral tone 5.

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/translit.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using icu::UnicodeString;

void require(UErrorCode status)
{
    if (U_FAILURE(status))
        throw std::runtime_error(u_errorName(status));
}

/// What orders a syllable as dictionaries do: ü behind u, the tones last.
std::string sortKey(const std::string &syllable)
{
    std::string letters = syllable.substr(0, syllable.size() - 1);
    std::ranges::replace(letters, 'v', 'u');
    return letters + ' ' + syllable;
}

/// The ranges of the basic plane that hold Han characters, both ends included.
constexpr std::pair<UChar32, UChar32> hanRanges[] = { { 0x3007, 0x3007 }, { 0x3400, 0x4DBF }, { 0x4E00, 0x9FFF }, { 0xF900, 0xFAD9 } };

class Reader {
public:
    Reader()
    {
        UErrorCode status = U_ZERO_ERROR;
        UParseError place;
        m_toLatin.reset(icu::Transliterator::createInstance("Han-Latin", UTRANS_FORWARD, place, status));
        m_decompose = icu::Normalizer2::getNFDInstance(status);
        require(status);
    }

    /// "zhang3", or nothing for a character that has no reading.
    std::string read(UChar32 character) const
    {
        UnicodeString latin(character);
        m_toLatin->transliterate(latin);
        UErrorCode status = U_ZERO_ERROR;
        const UnicodeString letters = m_decompose->normalize(latin, status);
        require(status);
        return withToneNumber(letters);
    }

private:
    static std::string withToneNumber(const UnicodeString &letters)
    {
        static const std::map<char16_t, char> tones { { u'\u0304', '1' }, { u'\u0301', '2' }, { u'\u030C', '3' }, { u'\u0300', '4' } };
        std::string syllable;
        char tone = '5';
        for (int at = 0; at < letters.length(); ++at) {
            const char16_t letter = letters[at];
            if (letter >= u'a' && letter <= u'z')
                syllable += char(letter);
            else if (const auto known = tones.find(letter); known != tones.end())
                tone = known->second;
            else if (letter == u'\u0308')
                syllable.back() = 'v';
            else if (letter != u'\u0302')
                return {};
        }
        return syllable + tone;
    }

    std::unique_ptr<icu::Transliterator> m_toLatin;
    const icu::Normalizer2 *m_decompose = nullptr;
};

std::vector<UChar32> charactersInOrder()
{
    std::vector<UChar32> characters;
    for (const auto &[first, last] : hanRanges) {
        for (UChar32 character = first; character <= last; ++character)
            characters.push_back(character);
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale("zh@collation=pinyin"), status));
    require(status);
    std::ranges::stable_sort(characters, [&](UChar32 left, UChar32 right) {
        UErrorCode comparison = U_ZERO_ERROR;
        return collator->compare(UnicodeString(left), UnicodeString(right), comparison) == UCOL_LESS;
    });
    return characters;
}

void writeTable()
{
    const Reader reader;
    std::map<std::string, std::string> lines;
    std::string unread = "-";
    for (const UChar32 character : charactersInOrder()) {
        const std::string syllable = reader.read(character);
        std::string &line = syllable.empty() ? unread : lines.try_emplace(sortKey(syllable), syllable).first->second;
        if (line == syllable || line == "-")
            line += ' ';
        UnicodeString(character).toUTF8String(line);
    }
    std::printf("# Han characters by reading, made by pinyin_table from the data of ICU %s.\n", U_ICU_VERSION);
    for (const auto &[key, line] : lines)
        std::printf("%s\n", line.c_str());
    std::printf("%s\n", unread.c_str());
}

} // namespace

int main()
{
    try {
        writeTable();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "pinyin_table: %s\n", error.what());
        return 1;
    }
    return 0;
}
