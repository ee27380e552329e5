#include "server/http/chunked_body.h"

#include "server/http/request_header.h"

#include <algorithm>
#include <charconv>

namespace server {

namespace {

constexpr std::size_t longestFrame = 32 * 1024; ///< sizes, extensions and trailing lines together

std::size_t sizeOf(std::string_view line)
{
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), size, 16);
    const auto extension = line.substr(std::size_t(end - line.data()));
    const bool isPlain
        = std::none_of(extension.begin(), extension.end(), [](char byte) { return byte >= 0 && byte < ' ' && byte != '\t'; });
    if (error != std::errc() || line.front() == '-' || !isPlain || (!extension.empty() && extension.front() != ';'))
        throw RequestFault {};
    return size;
}

} // namespace

std::size_t ChunkedBody::put(std::string_view bytes, std::string &body)
{
    std::size_t used = 0;
    while (!isDone()) {
        const auto rest = bytes.substr(used);
        if (m_part == Part::Data) {
            if (rest.empty())
                break;
            used += takeData(rest, body);
            continue;
        }
        const std::size_t feed = rest.find('\n');
        if (m_frameBytes + std::min(feed, rest.size()) > longestFrame)
            throw RequestFault {};
        if (feed == rest.npos)
            break;
        if (feed == 0 || rest[feed - 1] != '\r')
            throw RequestFault {};
        readLine(rest.substr(0, feed - 1), body.size());
        m_frameBytes += feed + 1;
        used += feed + 1;
    }
    return used;
}

std::size_t ChunkedBody::takeData(std::string_view bytes, std::string &body)
{
    const std::size_t taken = std::min(bytes.size(), m_left);
    body += bytes.substr(0, taken);
    if ((m_left -= taken) == 0)
        m_part = Part::DataEnd;
    return taken;
}

void ChunkedBody::readLine(std::string_view line, std::size_t bodySize)
{
    switch (m_part) {
    case Part::Size:
        if (line.empty())
            throw RequestFault {};
        m_left = sizeOf(line);
        if (m_left > m_limit - bodySize)
            throw RequestFault { 413 };
        m_part = m_left > 0 ? Part::Data : Part::Trailer;
        return;
    case Part::DataEnd:
        if (!line.empty())
            throw RequestFault {};
        m_part = Part::Size;
        return;
    default:
        if (line.empty())
            m_part = Part::Done;
        else
            (void)readHeaderField(line);
    }
}

} // namespace server
