#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace engine {

/// Some rows as one stream of bytes: a kind for each value, then the value. Written once and read once.
class RowBatch {
public:
    enum class Kind : std::uint8_t { Null, Integer, Double, Text };

    void addNull() { put(Kind::Null, 0); }
    void addInteger(std::int64_t value) { std::memcpy(put(Kind::Integer, sizeof value), &value, sizeof value); }
    void addDouble(double value) { std::memcpy(put(Kind::Double, sizeof value), &value, sizeof value); }
    void addText(std::string_view text)
    {
        const auto size = std::uint32_t(text.size());
        char *const place = put(Kind::Text, sizeof size + size);
        std::memcpy(place, &size, sizeof size);
        copy(place + sizeof size, text);
    }
    std::size_t size() const { return m_size; } ///< in bytes
    void clear() { m_size = 0; }

    /// Reads what was written, from the beginning.
    class Reader {
    public:
        explicit Reader(const RowBatch &batch)
            : m_next(batch.m_bytes.data())
            , m_end(m_next + batch.m_size)
        {
        }
        bool atEnd() const { return m_next == m_end; }
        Kind kind() { return Kind(*m_next++); }
        template <class Number>
        Number number()
        {
            Number value;
            std::memcpy(&value, m_next, sizeof value);
            m_next += sizeof value;
            return value;
        }
        std::string_view text()
        {
            const auto size = number<std::uint32_t>();
            m_next += size;
            return { m_next - size, size };
        }

    private:
        const char *m_next;
        const char *m_end;
    };

private:
    char *put(Kind kind, std::size_t size)
    {
        if (m_size + size + 1 > m_bytes.size())
            m_bytes.resize(m_bytes.size() * 2 + size + 1);
        char *const place = m_bytes.data() + m_size;
        *place = char(kind);
        m_size += size + 1;
        return place + 1;
    }
    static void copy(char *to, std::string_view text)
    {
        // The usual sizes without a call.
        if (text.size() >= 8 && text.size() <= 16) {
            std::memcpy(to, text.data(), 8);
            std::memcpy(to + text.size() - 8, text.data() + text.size() - 8, 8);
        } else {
            std::memcpy(to, text.data(), text.size());
        }
    }

    std::vector<char> m_bytes; ///< larger than its use
    std::size_t m_size = 0;
};

} // namespace engine
