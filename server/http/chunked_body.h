#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace server {

/// Reads a chunked body from bytes as they arrive. Extensions and trailing header lines are checked and forgotten.
class ChunkedBody {
public:
    /// `limit` bytes at most belong to the body.
    explicit ChunkedBody(std::size_t limit)
        : m_limit(limit)
    {
    }

    /// Takes bytes from the beginning of `bytes`, appends what belongs to the body and returns how many; the rest is to be given
    /// again with what follows it. Throws RequestFault.
    std::size_t put(std::string_view bytes, std::string &body);
    bool isDone() const { return m_part == Part::Done; }

private:
    enum class Part { Size, Data, DataEnd, Trailer, Done };
    void readLine(std::string_view line, std::size_t bodySize);
    std::size_t takeData(std::string_view bytes, std::string &body);

    const std::size_t m_limit;
    Part m_part = Part::Size;
    std::size_t m_left = 0; ///< of the chunk
    std::size_t m_frameBytes = 0; ///< of all that is no body
};

} // namespace server
