#include "server/http/request_reader.h"

#include <algorithm>

namespace server {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view headerEnd = "\r\n\r\n";

} // namespace

RequestReader::RequestReader(std::size_t headerLimit, std::size_t bodyLimit)
    : m_headerLimit(headerLimit)
    , m_bodyLimit(bodyLimit)
    , m_chunks(bodyLimit)
{
}

std::size_t RequestReader::put(std::string_view bytes)
{
    std::size_t used = 0;
    try {
        if (m_state == State::Header)
            used = putHeader(bytes);
        if (m_state == State::Body)
            used += putBody(bytes.substr(used));
    } catch (const RequestFault &fault) {
        m_state = State::Failed;
        m_failure = fault.status;
    }
    return used;
}

/// The header is used as a whole, so that whatever judges it sees all of it.
std::size_t RequestReader::putHeader(std::string_view bytes)
{
    // Some clients end the body before with a line end too many.
    const bool skips = !m_hasSkippedLine && m_searched <= lineEnd.size() && bytes.starts_with(lineEnd);
    const std::size_t begin = skips ? lineEnd.size() : 0;
    if (skips) {
        m_hasSkippedLine = true;
        m_searched = 0;
    }
    bytes.remove_prefix(begin);
    const std::size_t end = bytes.find(headerEnd, m_searched);
    const std::size_t size = std::min(end, bytes.size());
    checkLineEnds(bytes.substr(0, size));
    m_searched = size - std::min(size, headerEnd.size() - 1);
    // What has no end yet needs one byte more at least.
    if (size + (end == bytes.npos ? 1 : headerEnd.size()) > m_headerLimit)
        throw RequestFault { 431 };
    if (end == bytes.npos)
        return begin;
    m_header = readRequestHeader(bytes.substr(0, size));
    if (m_header.length > m_bodyLimit)
        throw RequestFault { 413 };
    m_state = m_header.isChunked || m_header.length > 0 ? State::Body : State::Done;
    return begin + size + headerEnd.size();
}

/// A line feed alone would let the header go on where others see its end.
void RequestReader::checkLineEnds(std::string_view bytes)
{
    for (std::size_t at = bytes.find('\n', m_searched); at != bytes.npos; at = bytes.find('\n', at + 1))
        if (at == 0 || bytes[at - 1] != '\r')
            throw RequestFault {};
}

std::size_t RequestReader::putBody(std::string_view bytes)
{
    std::string &body = m_header.request.body;
    std::size_t used = 0;
    if (m_header.isChunked) {
        used = m_chunks.put(bytes, body);
    } else {
        used = std::min(bytes.size(), std::size_t(m_header.length) - body.size());
        body += bytes.substr(0, used);
    }
    if (m_header.isChunked ? m_chunks.isDone() : body.size() == m_header.length)
        m_state = State::Done;
    return used;
}

} // namespace server
