#include "platform/editors/lookup_match.h"

#include "platform/dataset/pinyin_pattern.h"
#include "platform/dataset/text_order.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

/// How well a row fits what was typed, the best first.
enum class LookupRank { SameCode, SameName, SameButCase, CodeBegins, NameBegins, NameContains, PinyinBegins, PinyinContains, None };

/// Shares the text where it is the same.
QString folded(const QString &text)
{
    const auto isFolded = [](QChar letter) { return letter.toCaseFolded() == letter; };
    if (std::ranges::all_of(text, isFolded))
        return text;
    QString result(text.size(), Qt::Uninitialized);
    std::ranges::transform(text, result.begin(), [](QChar letter) { return letter.toCaseFolded(); });
    return result;
}

std::vector<int> byReading(const TDataSet &dataSet, int field)
{
    std::string bytes;
    std::vector<std::size_t> ends;
    for (int row = 0; row < dataSet.recordCount(); ++row) {
        bytes += dataSet.text(field, row).toStdString();
        ends.push_back(bytes.size());
    }
    std::vector<std::string_view> texts;
    for (std::size_t at = 0, begin = 0; at < ends.size(); begin = ends[at++])
        texts.push_back(std::string_view(bytes).substr(begin, ends[at] - begin));
    const TextOrder order(texts);
    return { order.permutation.begin(), order.permutation.end() };
}

} // namespace

/// Decides which texts a typed one means, and how they rank; every way in which a row can be found stands here.
class LookupIndex::Search {
public:
    explicit Search(const QString &typed)
        : m_typed { typed, folded(typed) }
        , m_read(typed)
    {
    }

    LookupRank rankOfCode(const Text &code) const
    {
        if (!code.folded.startsWith(m_typed.folded))
            return LookupRank::None;
        if (code.folded.size() > m_typed.folded.size())
            return LookupRank::CodeBegins;
        return code.shown == m_typed.shown ? LookupRank::SameCode : LookupRank::SameButCase;
    }
    LookupRank rankOfName(const Text &name) const
    {
        const qsizetype place = name.folded.indexOf(m_typed.folded);
        if (place >= 0) {
            if (name.folded.size() == m_typed.folded.size())
                return name.shown == m_typed.shown ? LookupRank::SameName : LookupRank::SameButCase;
            return place == 0 ? LookupRank::NameBegins : LookupRank::NameContains;
        }
        const qsizetype read = m_read.find(name.shown).start;
        return read < 0 ? LookupRank::None : read == 0 ? LookupRank::PinyinBegins : LookupRank::PinyinContains;
    }

private:
    Text m_typed;
    PinyinPattern m_read;
};

LookupIndex::LookupIndex(const TDataSet &dataSet, LookupFields fields)
    : m_dataSet(&dataSet)
    , m_fields(std::move(fields))
    , m_byReading(byReading(dataSet, m_fields.names.front()))
{
    m_texts.reserve(m_byReading.size() * std::size_t(m_fields.names.size() + 1));
    const auto add = [&](int field, int row) {
        const QString text = dataSet.text(field, row);
        m_texts.push_back({ text, folded(text) });
    };
    for (const int row : m_byReading) {
        if (m_fields.code >= 0)
            add(m_fields.code, row);
        for (const int name : m_fields.names)
            add(name, row);
    }
}

LookupMatches LookupIndex::find(const QString &typed) const
{
    LookupMatches matches;
    if (typed.trimmed().isEmpty())
        return matches;
    const Search search(typed.trimmed());
    std::array<std::vector<int>, int(LookupRank::None)> ranked;
    auto text = m_texts.begin();
    for (const int row : m_byReading) {
        LookupRank best = m_fields.code < 0 ? LookupRank::None : search.rankOfCode(*text++);
        for (qsizetype name = 0; name < m_fields.names.size(); ++name)
            best = std::min(best, search.rankOfName(*text++));
        if (best != LookupRank::None)
            ranked[std::size_t(best)].push_back(row);
    }
    for (std::size_t rank = 0; rank < ranked.size(); ++rank) {
        if (rank <= std::size_t(LookupRank::SameName)) {
            matches.exact = matches.exact || !ranked[rank].empty();
            std::ranges::sort(ranked[rank]);
        }
        matches.rows.insert(matches.rows.end(), ranked[rank].begin(), ranked[rank].end());
    }
    return matches;
}

} // namespace platform
