#pragma once

#include <string>
#include <string_view>

namespace server {

/// An answer that is complete before it is sent.
struct Response {
    int status = 200;
    std::string body {};
    std::string contentType = "application/json";
    std::string headers {}; ///< further ones, each ended by CR LF
};

/// What becomes of the connection when the answer has been sent.
enum class After { Close, KeepAlive };
/// How much of an answer is sent.
enum class Content {
    Whole,
    HeadOnly, ///< for HEAD
};

/// {"code":...,"message":...}; the message is for the user.
Response errorResponse(int status, std::string_view code, std::string_view message);

/// The status line and the headers that every answer has, up to Content-Type; further ones and the empty line follow.
std::string responseHead(int status, std::string_view contentType, After after);
std::string responseText(const Response &response, After after, Content content);

} // namespace server
