#pragma once

#include "platform/dataset/pinyin_pattern.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Whether Chinese characters are also found by Latin letters that say how they are read.
enum class HanText { AsWritten, AlsoAsRead };

/// A text to look for in others: as the whole of them, as their beginning or as any part.
class TextPattern {
public:
    enum class Match { Whole, Beginning, Anywhere };

    /// Nothing but a beginning or a part is found as it is read.
    explicit TextPattern(const QString &text, Match match = Match::Anywhere, Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive,
        HanText han = HanText::AsWritten);

    bool isEmpty() const { return m_bytes.empty(); }
    bool matches(std::string_view text) const; ///< UTF-8
    bool matches(const QString &text) const { return find(text).start >= 0; }
    using Place = PinyinPattern::Place;
    /// Where in `text` the pattern stands first, as it is written before as it is read.
    Place find(const QString &text) const;

private:
    enum class Compare { Bytes, AsciiCase, AnyCase };

    bool isWrittenIn(std::string_view text) const;
    Place findRead(const QString &text) const;
    qsizetype findWritten(const QString &text) const;

    QString m_text;
    std::string m_bytes; ///< in lower case when Latin case does not count
    Match m_match;
    Compare m_compare = Compare::Bytes;
    std::optional<PinyinPattern> m_read; ///< nothing when only what is written counts
};

} // namespace platform
