#include "platform/dataset/pinyin_pattern.h"

#include "platform/dataset/pinyin.h"

#include <algorithm>
#include <bit>

namespace platform {

namespace {

constexpr std::size_t mostLetters = 63; ///< what a set of numbers of typed letters can tell

/// The letters of a text as pinyin, ü as v, without blanks and the marks between syllables; empty when it holds anything else.
std::string lettersOf(const QString &typed)
{
    std::string letters;
    bool hasLetter = false;
    for (const QChar character : typed) {
        const QChar small = character.toLower();
        hasLetter = hasLetter || small.isLetter();
        if (small == u'ü')
            letters += 'v';
        else if (small.unicode() > 0x7F)
            return {};
        else if (small != u' ' && small != u'\'')
            letters += small.toLatin1();
    }
    return hasLetter && letters.size() <= mostLetters ? letters : std::string();
}

/// People write ü as v or as u.
bool isSameLetter(char ofSyllable, char typed) { return ofSyllable == typed || (ofSyllable == 'v' && typed == 'u'); }

} // namespace

PinyinPattern::PinyinPattern(const QString &typed)
    : m_pinyin(&Pinyin::table())
    , m_letters(lettersOf(typed))
{
}

PinyinPattern::Place PinyinPattern::find(QStringView text) const
{
    for (qsizetype start = 0; !isEmpty() && start < text.size(); ++start) {
        if (!mayBegin(text[start], m_letters.front()))
            continue;
        if (const qsizetype length = lengthReadFrom(text.sliced(start)))
            return { start, length };
    }
    return {};
}

/// Whether a character, as it is read or as it stands there, begins with a letter.
bool PinyinPattern::mayBegin(QChar character, char typed) const
{
    const std::uint32_t initials = m_pinyin->initials(character.unicode());
    return initials != 0 ? initials & Pinyin::letterBit(typed) : character.toLower() == QLatin1Char(typed);
}

qsizetype PinyinPattern::lengthReadFrom(QStringView text) const
{
    if (isEmpty() || text.isEmpty() || !text.front().isLetterOrNumber())
        return 0;
    Reached reached = 1;
    for (qsizetype length = 1; length <= text.size(); ++length) {
        reached = after(text[length - 1], reached);
        if (reached & all())
            return length;
        if (reached == 0)
            return 0;
    }
    return 0;
}

PinyinPattern::Reached PinyinPattern::after(QChar character, Reached reached) const
{
    const auto readings = m_pinyin->readings(character.unicode());
    if (readings.empty() && !character.isLetterOrNumber())
        return reached;
    Reached next = 0;
    for (Reached left = reached; left != 0; left &= left - 1) {
        const auto typed = std::size_t(std::countr_zero(left));
        if (!mayBegin(character, m_letters[typed]))
            continue;
        for (const Pinyin::Reading reading : readings)
            next |= afterSyllable(m_pinyin->syllable(reading), typed);
        if (readings.empty())
            next |= Reached(2) << typed;
    }
    return next;
}

/// A character may be typed as its syllable, as the initial of it, as zh, ch, sh in full or not, and the last one as any beginning.
PinyinPattern::Reached PinyinPattern::afterSyllable(std::string_view syllable, std::size_t typed) const
{
    const std::size_t most = std::min(syllable.size(), m_letters.size() - typed);
    std::size_t common = 0;
    while (common < most && isSameLetter(syllable[common], m_letters[typed + common]))
        ++common;
    if (common == 0)
        return 0;
    const Reached before = Reached(1) << typed;
    Reached next = before << 1;
    if (common > 1 && syllable[1] == 'h')
        next |= before << 2;
    if (common == syllable.size() || typed + common == m_letters.size())
        next |= before << common;
    return next;
}

} // namespace platform
