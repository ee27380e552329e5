#pragma once

#include "server/http/request.h"

#include <cstdint>

namespace server {

/// The header of a request, and how its body is delimited.
struct RequestHeader {
    Request request {}; ///< still without its body
    std::uint64_t length = 0; ///< of the body, unless it is chunked
    bool isChunked = false;
    bool expectsContinue = false;
};

/// Why a request cannot be read.
struct RequestFault {
    int status = 400;
};

/// Reads the request line and the header lines, each ended by CR LF, without the empty line. Takes only what has one meaning for
/// every reader (RFC 9112): another server in front of this one must not see other requests than this one does. Throws RequestFault.
[[nodiscard]] RequestHeader readRequestHeader(std::string_view text);

/// Reads one header line without its CR LF. Throws RequestFault.
struct HeaderField {
    std::string_view name;
    std::string_view value;
};
[[nodiscard]] HeaderField readHeaderField(std::string_view line);

} // namespace server
