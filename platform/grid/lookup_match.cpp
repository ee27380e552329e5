#include "platform/grid/lookup_match.h"

#include "platform/dataset/data_set.h"

#include <array>

namespace {

LookupRank rankOf(const LookupMatcher &matcher, const TDataSet &dataSet, const LookupFields &fields, int row)
{
    LookupRank best = fields.code < 0 ? LookupRank::None : matcher.rankByCode(dataSet.text(fields.code, row));
    for (const int name : fields.names)
        best = std::min(best, matcher.rankByName(dataSet.text(name, row)));
    return best;
}

} // namespace

LookupRank LookupMatcher::rankByCode(const QString &code) const
{
    if (!code.startsWith(m_typed, Qt::CaseInsensitive))
        return LookupRank::None;
    if (code.size() > m_typed.size())
        return LookupRank::CodeBegins;
    return code == m_typed ? LookupRank::Same : LookupRank::SameButCase;
}

LookupRank LookupMatcher::rankByName(const QString &name) const
{
    const qsizetype place = name.indexOf(m_typed, 0, Qt::CaseInsensitive);
    if (place < 0)
        return LookupRank::None;
    if (name.size() == m_typed.size())
        return name == m_typed ? LookupRank::Same : LookupRank::SameButCase;
    return place == 0 ? LookupRank::NameBegins : LookupRank::NameContains;
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
    matches.exact = !ranked[std::size_t(LookupRank::Same)].empty();
    for (const std::vector<int> &rows : ranked)
        matches.rows.insert(matches.rows.end(), rows.begin(), rows.end());
    return matches;
}
