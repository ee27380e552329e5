#include "server/http/request.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/string_body.hpp>

namespace server {

namespace http = boost::beast::http;

namespace {

constexpr std::size_t largestFrame = 16 * 1024; ///< of what stands between the parts of a chunked body

int hexDigit(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char small = char(digit | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::string decoded(std::string_view text)
{
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int high = text[at] == '%' && at + 2 < text.size() ? hexDigit(text[at + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[at + 2]) : -1;
        if (low >= 0) {
            plain += char(high << 4 | low);
            at += 2;
        } else {
            plain += text[at] == '+' ? ' ' : text[at];
        }
    }
    return plain;
}

} // namespace

std::string Request::parameter(std::string_view name) const
{
    std::string_view rest = query;
    while (!rest.empty()) {
        const auto pair = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(pair.size() + 1, rest.size()));
        if (pair.substr(0, pair.find('=')) == name && pair.size() > name.size())
            return decoded(pair.substr(name.size() + 1));
    }
    return {};
}

struct RequestReader::Parser : http::request_parser<http::string_body> { };

RequestReader::RequestReader(std::size_t headerLimit, std::size_t bodyLimit)
    : m_parser(std::make_unique<Parser>())
{
    m_parser->header_limit(std::uint32_t(headerLimit));
    m_parser->body_limit(bodyLimit);
    m_parser->eager(true);
}

RequestReader::~RequestReader() = default;

std::size_t RequestReader::put(std::string_view bytes)
{
    boost::beast::error_code error;
    const std::size_t used = m_parser->put(boost::asio::buffer(bytes.data(), bytes.size()), error);
    if (error == http::error::need_more && !(used == 0 && m_parser->is_header_done() && bytes.size() > largestFrame))
        error = {};
    if (error) {
        m_state = State::Failed;
        m_failure = error == http::error::header_limit ? 431 : error == http::error::body_limit ? 413 : 400;
    } else if (m_parser->is_done()) {
        m_state = State::Done;
    } else if (m_parser->is_header_done()) {
        m_state = State::Body;
    }
    return used;
}

bool RequestReader::expectsContinue() const
{
    const auto &message = m_parser->get();
    return message.version() >= 11 && boost::beast::iequals(message[http::field::expect], "100-continue");
}

Request RequestReader::request() const
{
    const auto &message = m_parser->get();
    const auto field = [&message](auto name) { return std::string(message[name]); };
    const std::string target(message.target());
    const std::size_t question = std::min(target.find('?'), target.size());
    return {
        .method = std::string(message.method_string()),
        .path = target.substr(0, question),
        .query = target.substr(std::min(question + 1, target.size())),
        .authorization = field(http::field::authorization),
        .accept = field(http::field::accept),
        .database = field("X-Kelvara-Database"),
        .compression = field("X-Kelvara-Compression"),
        .forwardedFor = field("X-Forwarded-For"),
        .body = message.body(),
        .keepAlive = m_parser->keep_alive(),
        .isVersion11 = message.version() >= 11,
        .hasBody = m_parser->chunked() || m_parser->content_length().has_value(),
    };
}

} // namespace server
