#include "server/http/response.h"

#include "packet/packet.h"
#include "server/base/json.h"

#include <chrono>

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
    case 501:
        return "Not Implemented";
    case 503:
        return "Service Unavailable";
    case 505:
        return "HTTP Version Not Supported";
    default:
        return "Internal Server Error";
    }
}

/// "Mon, 23 Nov 2026 07:15:00 GMT", made once a second.
const std::string &dateText()
{
    using namespace std::chrono;
    constexpr std::string_view weekdays = "SunMonTueWedThuFriSat";
    constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec";
    thread_local sys_seconds written {};
    thread_local std::string text;
    const auto now = floor<seconds>(system_clock::now());
    if (now == written)
        return text;
    written = now;
    const auto day = floor<days>(now);
    const year_month_day date(day);
    std::string digits;
    packet::appendTimestamp(now.time_since_epoch().count(), digits); // yyyy-mm-dd hh:mm:ss
    text = weekdays.substr(3 * weekday(day).c_encoding(), 3);
    text += ", " + digits.substr(8, 2) + " ";
    text += months.substr(3 * (unsigned(date.month()) - 1), 3);
    text += " " + digits.substr(0, 4) + digits.substr(10) + " GMT";
    return text;
}

} // namespace

Response errorResponse(int status, std::string_view code, std::string_view message)
{
    return { .status = status, .body = "{\"code\":" + jsonText(code) + ",\"message\":" + jsonText(message) + "}\n" };
}

std::string responseHead(int status, std::string_view contentType, After after)
{
    std::string head = "HTTP/1.1 " + std::to_string(status) + " ";
    head += reasonOf(status);
    head += "\r\nDate: " + dateText() + "\r\nServer: Kelvara\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n";
    head += after == After::KeepAlive ? "Connection: keep-alive\r\n" : "Connection: close\r\n";
    head += "Content-Type: ";
    head += contentType;
    return head += "\r\n";
}

std::string responseText(const Response &response, After after, Content content)
{
    std::string text = responseHead(response.status, response.contentType, after);
    text += response.headers;
    text += "Content-Length: " + std::to_string(response.body.size()) + "\r\n\r\n";
    return content == Content::Whole ? text += response.body : text;
}

} // namespace server
