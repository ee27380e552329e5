#pragma once

#include "server/http/chunked_body.h"
#include "server/http/request_header.h"

namespace server {

/// Reads one request from bytes as they arrive.
class RequestReader {
public:
    enum class State {
        Header,
        Body,
        Done,
        Failed,
    };

    /// `headerLimit` and `bodyLimit` in bytes.
    RequestReader(std::size_t headerLimit, std::size_t bodyLimit);

    /// Takes bytes from the beginning of `bytes` and returns how many; the rest is to be given again with what follows it.
    std::size_t put(std::string_view bytes);
    State state() const { return m_state; }
    /// The HTTP status for what was wrong: 400, 413, 431, 501 or 505.
    int failure() const { return m_failure; }
    /// The header, once it is there, asks to be told that the body may come.
    bool expectsContinue() const { return m_header.expectsContinue; }
    /// The request so far; complete once the state is Done.
    const Request &request() const { return m_header.request; }

private:
    std::size_t putHeader(std::string_view bytes);
    std::size_t putBody(std::string_view bytes);
    void checkLineEnds(std::string_view bytes);

    const std::size_t m_headerLimit;
    const std::size_t m_bodyLimit;
    std::size_t m_searched = 0; ///< of a header that is not complete
    bool m_hasSkippedLine = false;
    RequestHeader m_header {};
    ChunkedBody m_chunks;
    State m_state = State::Header;
    int m_failure = 0;
};

} // namespace server
