#pragma once

#include <QList>
#include <QString>

#include <vector>

class TDataSet;

/// How well a row fits what was typed, the best first.
enum class LookupRank { Same, SameButCase, CodeBegins, NameBegins, NameContains, None };

/// Decides which rows a typed text means, and how they rank; every way in which a row can be found stands here.
class LookupMatcher {
public:
    /// Blanks around `typed` do not count.
    explicit LookupMatcher(const QString &typed)
        : m_typed(typed.trimmed())
    {
    }

    LookupRank rankByCode(const QString &code) const;
    LookupRank rankByName(const QString &name) const;

private:
    QString m_typed;
};

/// Where a lookup searches: indexes of fields.
struct LookupFields {
    int code; ///< -1 when there is none
    QList<int> names;
};

struct LookupMatches {
    std::vector<int> rows;
    bool exact = false; ///< the first one is what was typed, letter by letter
};

/// The rows of `dataSet` that fit, the best first, equals in their shown order; the dataset's current row stays.
LookupMatches lookUp(const TDataSet &dataSet, const LookupFields &fields, const QString &typed);
