#include "platform/dataset/text_pattern.h"

#include "platform/dataset/pinyin.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr auto lowerCase = [] {
    std::array<char, 256> table {};
    for (int code = 0; code < 256; ++code)
        table[std::size_t(code)] = char(code >= 'A' && code <= 'Z' ? code + 'a' - 'A' : code);
    return table;
}();

char lower(char character) { return lowerCase[static_cast<unsigned char>(character)]; }

constexpr auto sameButCase = [](char inText, char lowered) { return lower(inText) == lowered; };

} // namespace

TextPattern::TextPattern(const QString &text, Match match, Qt::CaseSensitivity sensitivity, HanText han)
    : m_text(text)
    , m_bytes(text.toStdString())
    , m_match(match)
{
    if (han == HanText::AlsoAsRead && match != Match::Whole) {
        m_read.emplace(text);
        if (m_read->isEmpty())
            m_read.reset();
    }
    if (sensitivity == Qt::CaseSensitive || text.toLower() == text.toUpper())
        return;
    const bool latin = std::ranges::all_of(text, [](QChar letter) { return letter < u'\x80' || letter.toLower() == letter.toUpper(); });
    m_compare = latin ? Compare::AsciiCase : Compare::AnyCase;
    std::ranges::transform(m_bytes, m_bytes.begin(), lower);
}

bool TextPattern::matches(std::string_view text) const
{
    if (isWrittenIn(text))
        return true;
    return m_read && Pinyin::mayHoldHan(text) && findRead(QString::fromUtf8(text.data(), qsizetype(text.size()))).start >= 0;
}

bool TextPattern::isWrittenIn(std::string_view text) const
{
    if (text.size() < m_bytes.size() && m_compare != Compare::AnyCase)
        return false;
    switch (m_compare) {
    case Compare::Bytes:
        return m_match == Match::Whole    ? text == m_bytes
            : m_match == Match::Beginning ? text.starts_with(m_bytes)
                                          : text.find(m_bytes) != std::string_view::npos;
    case Compare::AsciiCase:
        if (m_match == Match::Anywhere)
            return std::search(text.begin(), text.end(), m_bytes.begin(), m_bytes.end(), sameButCase) != text.end();
        return (m_match == Match::Beginning || text.size() == m_bytes.size())
            && std::equal(m_bytes.begin(), m_bytes.end(), text.begin(), [](char lowered, char inText) { return lower(inText) == lowered; });
    case Compare::AnyCase:
        return findWritten(QString::fromUtf8(text.data(), qsizetype(text.size()))) >= 0;
    }
    return false;
}

TextPattern::Place TextPattern::find(const QString &text) const
{
    const qsizetype written = findWritten(text);
    if (written >= 0 || !m_read)
        return { written, m_text.size() };
    return findRead(text);
}

TextPattern::Place TextPattern::findRead(const QString &text) const
{
    if (m_match == Match::Anywhere)
        return m_read->find(text);
    const qsizetype length = m_read->lengthReadFrom(text);
    return { length > 0 ? 0 : -1, length };
}

qsizetype TextPattern::findWritten(const QString &text) const
{
    const Qt::CaseSensitivity sensitivity = m_compare == Compare::Bytes ? Qt::CaseSensitive : Qt::CaseInsensitive;
    switch (m_match) {
    case Match::Whole:
        return text.compare(m_text, sensitivity) == 0 ? 0 : -1;
    case Match::Beginning:
        return text.startsWith(m_text, sensitivity) ? 0 : -1;
    case Match::Anywhere:
        break;
    }
    return text.indexOf(m_text, 0, sensitivity);
}

} // namespace platform
