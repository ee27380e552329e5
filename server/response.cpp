#include "server/response.h"

#include "server/json.h"

namespace server {

namespace {

std::string_view reasonOf(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 406:
        return "Not Acceptable";
    case 408:
        return "Request Timeout";
    case 411:
        return "Length Required";
    case 413:
        return "Payload Too Large";
    case 429:
        return "Too Many Requests";
    case 431:
        return "Request Header Fields Too Large";
    case 503:
        return "Service Unavailable";
    default:
        return "Internal Server Error";
    }
}

} // namespace

Response errorResponse(int status, std::string_view code, std::string_view message)
{
    return { .status = status, .body = "{\"code\":" + jsonText(code) + ",\"message\":" + jsonText(message) + "}\n" };
}

std::string responseHead(int status, std::string_view contentType, bool keepAlive)
{
    std::string head = "HTTP/1.1 " + std::to_string(status) + " ";
    head += reasonOf(status);
    head += "\r\nServer: Kelvara\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n";
    head += keepAlive ? "Connection: keep-alive\r\n" : "Connection: close\r\n";
    head += "Content-Type: ";
    head += contentType;
    return head += "\r\n";
}

std::string responseText(const Response &response, bool keepAlive, bool withBody)
{
    std::string text = responseHead(response.status, response.contentType, keepAlive);
    text += response.headers;
    text += "Content-Length: " + std::to_string(response.body.size()) + "\r\n\r\n";
    return withBody ? text += response.body : text;
}

} // namespace server
