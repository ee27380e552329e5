#include "platform/editors/lookup_match.h"

#include "platform/dataset/data_set.h"
#include "platform/dataset/pinyin.h"
#include "platform/dataset/text_order.h"

#include <algorithm>
#include <array>
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

LookupRank rankOf(const LookupMatcher &matcher, const TDataSet &dataSet, const LookupFields &fields, int row)
{
    LookupRank best = fields.code < 0 ? LookupRank::None : matcher.rankByCode(dataSet.text(fields.code, row));
    for (const int name : fields.names)
        best = std::min(best, matcher.rankByName(dataSet.text(name, row)));
    return best;
}

} // namespace

LookupMatcher::LookupMatcher(const QString &typed)
    : m_pinyin(Pinyin::table())
    , m_typed(typed.trimmed())
    , m_letters(lettersOf(m_typed))
{
}

LookupRank LookupMatcher::rankByCode(const QString &code) const
{
    if (!code.startsWith(m_typed, Qt::CaseInsensitive))
        return LookupRank::None;
    if (code.size() > m_typed.size())
        return LookupRank::CodeBegins;
    return code == m_typed ? LookupRank::SameCode : LookupRank::SameButCase;
}

LookupRank LookupMatcher::rankByName(const QString &name) const
{
    const qsizetype place = name.indexOf(m_typed, 0, Qt::CaseInsensitive);
    if (place >= 0) {
        if (name.size() == m_typed.size())
            return name == m_typed ? LookupRank::SameName : LookupRank::SameButCase;
        return place == 0 ? LookupRank::NameBegins : LookupRank::NameContains;
    }
    if (m_letters.empty())
        return LookupRank::None;
    for (qsizetype start = 0; start < name.size(); ++start) {
        if (isReadFrom(QStringView(name).mid(start)))
            return start == 0 ? LookupRank::PinyinBegins : LookupRank::PinyinContains;
    }
    return LookupRank::None;
}

/// Whether the characters, from the first one on, can have been typed as they are read; more of them may follow.
bool LookupMatcher::isReadFrom(QStringView name) const
{
    if (!name.front().isLetterOrNumber())
        return false;
    Reached reached = 1;
    for (const QChar character : name) {
        reached = after(character, reached);
        if (reached == 0 || reached & all())
            break;
    }
    return reached & all();
}

LookupMatcher::Reached LookupMatcher::after(QChar character, Reached reached) const
{
    const auto readings = m_pinyin.readings(character.unicode());
    if (readings.empty() && !character.isLetterOrNumber())
        return reached;
    Reached next = 0;
    for (Reached left = reached; left != 0; left &= left - 1) {
        const auto typed = std::size_t(std::countr_zero(left));
        for (const Pinyin::Reading reading : readings)
            next |= afterSyllable(m_pinyin.syllable(reading), typed);
        if (readings.empty() && character.toLower() == QLatin1Char(m_letters[typed]))
            next |= Reached(2) << typed;
    }
    return next;
}

/// A character may be typed as its syllable, as the initial of it, as zh, ch, sh in full or not, and the last one as any beginning.
LookupMatcher::Reached LookupMatcher::afterSyllable(std::string_view syllable, std::size_t typed) const
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

LookupMatches lookUp(const TDataSet &dataSet, const LookupFields &fields, const QString &typed)
{
    const LookupMatcher matcher(typed);
    std::array<std::vector<int>, int(LookupRank::None)> ranked;
    const int count = dataSet.recordCount();
    for (int row = 0; row < count; ++row) {
        const LookupRank rank = rankOf(matcher, dataSet, fields, row);
        if (rank != LookupRank::None)
            ranked[std::size_t(rank)].push_back(row);
    }
    LookupMatches matches;
    for (std::size_t rank = 0; rank < ranked.size(); ++rank) {
        const bool isExact = rank <= std::size_t(LookupRank::SameName);
        matches.exact = matches.exact || (isExact && !ranked[rank].empty());
        if (!isExact)
            sortByReading(dataSet, fields.names.front(), ranked[rank]);
        matches.rows.insert(matches.rows.end(), ranked[rank].begin(), ranked[rank].end());
    }
    return matches;
}

void sortByReading(const TDataSet &dataSet, int field, std::vector<int> &rows)
{
    std::string bytes;
    std::vector<std::size_t> ends;
    for (const int row : rows) {
        const QByteArray text = dataSet.text(field, row).toUtf8();
        bytes.append(text.data(), std::size_t(text.size()));
        ends.push_back(bytes.size());
    }
    std::vector<std::string_view> texts;
    for (std::size_t at = 0, begin = 0; at < ends.size(); begin = ends[at++])
        texts.push_back(std::string_view(bytes).substr(begin, ends[at] - begin));
    std::vector<int> sorted;
    sorted.reserve(rows.size());
    const TextOrder order(texts);
    for (const std::uint32_t place : order.permutation)
        sorted.push_back(rows[place]);
    rows.swap(sorted);
}

} // namespace platform
