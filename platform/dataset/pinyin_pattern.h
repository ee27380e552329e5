#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace platform {

class Pinyin;

/// A text typed in Latin letters, to be found in Chinese ones by how they are read: as whole syllables, as their initials, or mixed;
/// every reading of a character counts.
class PinyinPattern {
public:
    explicit PinyinPattern(const QString &typed);

    /// True when what was typed cannot be pinyin: it fits nothing then.
    bool isEmpty() const { return m_letters.empty(); }
    /// How many characters, from the first one on, were typed as they are read; 0 when they were not.
    qsizetype lengthReadFrom(QStringView text) const;
    struct Place {
        qsizetype start = -1; ///< -1: nowhere
        qsizetype length = 0;
    };
    /// The first place in `text` that is read so.
    Place find(QStringView text) const;

private:
    /// A set of numbers of typed letters: those after which a character of the text can begin.
    using Reached = quint64;

    bool mayBegin(QChar character, char typed) const;
    Reached after(QChar character, Reached reached) const;
    Reached afterSyllable(std::string_view syllable, std::size_t typed) const;
    Reached all() const { return Reached(1) << m_letters.size(); }

    const Pinyin *m_pinyin;
    std::string m_letters; ///< small ones; empty when it cannot be pinyin
};

} // namespace platform
