#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace files {

/// Bytes that grow at their end and are emptied now and then; short pieces are taken without a call.
class TextBuffer {
public:
    /// So many bytes behind a padded text can be read.
    static constexpr std::size_t padding = 32;

    std::size_t size() const { return m_size; }
    std::string_view view() const { return { m_bytes.data(), m_size }; }
    void clear() { m_size = 0; } ///< keeps the memory

    TextBuffer &operator+=(char letter)
    {
        *room(1) = letter;
        ++m_size;
        return *this;
    }
    TextBuffer &operator+=(std::string_view text)
    {
        std::copy_n(text.data(), text.size(), room(text.size()));
        m_size += text.size();
        return *this;
    }
    void appendPadded(const char *text, std::size_t size)
    {
        char *end = room(size + padding);
        std::memcpy(end, text, padding);
        if (size > padding)
            std::memcpy(end + padding, text + padding, size - padding);
        m_size += size;
    }
    /// Where up to `size` bytes can be put before advance() takes them.
    char *room(std::size_t size)
    {
        if (m_size + size > m_bytes.size())
            m_bytes.resize((m_size + size) * 2);
        return m_bytes.data() + m_size;
    }
    void advance(const char *end) { m_size = std::size_t(end - m_bytes.data()); }

private:
    std::vector<char> m_bytes;
    std::size_t m_size = 0;
};

} // namespace files
