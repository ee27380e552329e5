#include "platform/editors/lookup_match.h"

#include "platform/dataset/data_set.h"
#include "platform/dataset/text_order.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

LookupRank rankOf(const LookupMatcher &matcher, const TDataSet &dataSet, const LookupFields &fields, int row)
{
    LookupRank best = fields.code < 0 ? LookupRank::None : matcher.rankByCode(dataSet.text(fields.code, row));
    for (const int name : fields.names)
        best = std::min(best, matcher.rankByName(dataSet.text(name, row)));
    return best;
}

} // namespace

LookupMatcher::LookupMatcher(const QString &typed)
    : m_typed(typed.trimmed())
    , m_read(m_typed)
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
    const qsizetype read = m_read.find(name).start;
    return read < 0 ? LookupRank::None : read == 0 ? LookupRank::PinyinBegins : LookupRank::PinyinContains;
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
