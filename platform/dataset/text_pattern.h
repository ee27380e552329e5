#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace platform {

/// A text to look for in others: as the whole of them, as their beginning or as any part.
class TextPattern {
public:
    enum class Match { Whole, Beginning, Anywhere };

    explicit TextPattern(const QString &text, Match match = Match::Anywhere, Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive);

    bool isEmpty() const { return m_bytes.empty(); }
    bool matches(std::string_view text) const; ///< UTF-8
    bool matches(const QString &text) const { return find(text) >= 0; }
    /// Where in `text` the pattern stands first; -1 when it does not.
    qsizetype find(const QString &text) const;

private:
    enum class Compare { Bytes, AsciiCase, AnyCase };

    QString m_text;
    std::string m_bytes; ///< in lower case when Latin case does not count
    Match m_match;
    Compare m_compare = Compare::Bytes;
};

} // namespace platform
