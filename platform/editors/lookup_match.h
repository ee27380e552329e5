#pragma once

#include <QList>
#include <QString>

#include <string>
#include <vector>

class TDataSet;

namespace platform {

class Pinyin;

/// How well a row fits what was typed, the best first.
enum class LookupRank { SameCode, SameName, SameButCase, CodeBegins, NameBegins, NameContains, PinyinBegins, PinyinContains, None };

/// Decides which rows a typed text means, and how they rank; every way in which a row can be found stands here.
class LookupMatcher {
public:
    /// Blanks around `typed` do not count.
    explicit LookupMatcher(const QString &typed);

    LookupRank rankByCode(const QString &code) const;
    LookupRank rankByName(const QString &name) const;

private:
    /// A set of numbers of typed letters: those after which a character of the name can begin.
    using Reached = quint64;

    bool isReadFrom(QStringView name) const;
    Reached after(QChar character, Reached reached) const;
    Reached afterSyllable(std::string_view syllable, std::size_t typed) const;
    Reached all() const { return Reached(1) << m_letters.size(); }

    const Pinyin &m_pinyin;
    QString m_typed;
    std::string m_letters; ///< as pinyin in small letters; empty when it cannot be that
};

/// Where a lookup searches: indexes of fields.
struct LookupFields {
    int code; ///< -1 when there is none
    QList<int> names; ///< the listed one first
};

struct LookupMatches {
    std::vector<int> rows;
    bool exact = false; ///< the first one is what was typed, letter by letter
};

/// The rows of `dataSet` that fit, the best first, equally good ones in reading order of the listed field, exact ones in their shown
/// order; the dataset's current row stays.
LookupMatches lookUp(const TDataSet &dataSet, const LookupFields &fields, const QString &typed);

/// Sorts rows of `dataSet` by how a Chinese reader orders the texts of a field. Stable.
void sortByReading(const TDataSet &dataSet, int field, std::vector<int> &rows);

} // namespace platform
