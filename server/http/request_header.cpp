#include "server/http/request_header.h"

#include "server/base/text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace server {

namespace {

constexpr std::size_t longestMethod = 32;
constexpr int mostFields = 100;

[[noreturn]] void refuse(int status = 400) { throw RequestFault { status }; }

void require(bool condition, int status = 400)
{
    if (!condition)
        refuse(status);
}

bool isLetterOrDigit(char byte) { return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool isToken(std::string_view text)
{
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return !text.empty()
        && std::all_of(text.begin(), text.end(), [&](char byte) { return isLetterOrDigit(byte) || marks.find(byte) != marks.npos; });
}

bool isHost(std::string_view text)
{
    constexpr std::string_view marks = "-._~%!$&'()*+,;=:[]";
    return std::all_of(text.begin(), text.end(), [&](char byte) { return isLetterOrDigit(byte) || marks.find(byte) != marks.npos; });
}

std::uint64_t lengthOf(std::string_view digits)
{
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    require(error == std::errc() && end == digits.data() + digits.size());
    return length;
}

/// What follows the scheme and the host of a target that names them, which proxies may send.
std::string_view withoutHost(std::string_view target)
{
    for (const std::string_view scheme : { "http://", "https://" }) {
        if (!equalsIgnoringCase(target.substr(0, scheme.size()), scheme))
            continue;
        const auto rest = target.substr(scheme.size());
        const std::size_t slash = rest.find('/');
        return slash == rest.npos ? "/" : rest.substr(slash);
    }
    return target;
}

void readTarget(std::string_view target, Request &request)
{
    require(std::all_of(target.begin(), target.end(), [](char byte) { return byte > ' ' && byte < '\x7f' && byte != '#'; }));
    target = withoutHost(target);
    require(target.starts_with('/') || target == "*");
    const std::size_t question = std::min(target.find('?'), target.size());
    request.path = target.substr(0, question);
    request.query = target.substr(std::min(question + 1, target.size()));
}

void readRequestLine(std::string_view line, Request &request)
{
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    require(first != line.npos && first < last);
    request.method = line.substr(0, first);
    require(request.method.size() <= longestMethod && isToken(request.method));
    const auto version = line.substr(last + 1);
    require(version.starts_with("HTTP/") && version.size() == std::string_view("HTTP/1.1").size());
    require(version == "HTTP/1.1" || version == "HTTP/1.0", 505);
    request.isVersion11 = version == "HTTP/1.1";
    readTarget(line.substr(first + 1, last - first - 1), request);
}

/// The fields that matter, as they come.
class Fields {
public:
    explicit Fields(RequestHeader &header)
        : m_header(header)
    {
    }

    void take(const HeaderField &field)
    {
        Request &request = m_header.request;
        const std::pair<std::string_view, std::string *> single[] = { { "authorization", &request.authorization },
            { "x-kelvara-database", &request.database }, { "x-kelvara-compression", &request.compression } };
        for (const auto &[name, value] : single)
            if (equalsIgnoringCase(field.name, name))
                return takeOnce(field.value, *value);
        if (equalsIgnoringCase(field.name, "host"))
            takeOnce(field.value, m_host);
        else if (equalsIgnoringCase(field.name, "content-length"))
            takeOnce(field.value, m_length);
        else if (equalsIgnoringCase(field.name, "transfer-encoding"))
            takeOnce(field.value, m_coding);
        else if (equalsIgnoringCase(field.name, "accept"))
            request.accept += (request.accept.empty() ? "" : ",") + std::string(field.value);
        else if (equalsIgnoringCase(field.name, "x-forwarded-for"))
            request.forwardedFor = field.value; // our own proxy adds its line last
        else if (equalsIgnoringCase(field.name, "connection"))
            m_connection += "," + std::string(field.value);
        else if (equalsIgnoringCase(field.name, "expect"))
            m_header.expectsContinue = equalsIgnoringCase(field.value, "100-continue");
    }

    void finish()
    {
        Request &request = m_header.request;
        require(m_host ? isHost(*m_host) : !request.isVersion11);
        if (m_coding) {
            // A length beside it, or another coding, is how one request is made to look like two.
            require(!m_length && request.isVersion11);
            require(equalsIgnoringCase(*m_coding, "chunked"), 501);
            m_header.isChunked = true;
        }
        if (m_length)
            m_header.length = lengthOf(*m_length);
        m_header.expectsContinue &= request.isVersion11;
        request.hasBody = m_coding || m_length;
        const bool endIsCertain = request.hasBody || request.method == "GET" || request.method == "HEAD";
        request.keepAlive = endIsCertain && (request.isVersion11 ? !connectionHas("close") : connectionHas("keep-alive"));
    }

private:
    template <class Text>
    void takeOnce(std::string_view value, Text &into)
    {
        require(isUnset(into));
        into = std::string(value);
    }
    static bool isUnset(const std::optional<std::string> &text) { return !text; }
    static bool isUnset(const std::string &text) { return text.empty(); }

    bool connectionHas(std::string_view token) const
    {
        std::string_view rest = m_connection;
        while (!rest.empty())
            if (equalsIgnoringCase(nextPart(rest, ','), token))
                return true;
        return false;
    }

    RequestHeader &m_header;
    std::optional<std::string> m_host {};
    std::optional<std::string> m_length {};
    std::optional<std::string> m_coding {};
    std::string m_connection {};
};

} // namespace

HeaderField readHeaderField(std::string_view line)
{
    const std::size_t colon = line.find(':');
    require(colon != line.npos);
    // No blank before the colon or at the beginning of the line, where one would continue the line before it.
    require(isToken(line.substr(0, colon)));
    const auto value = line.substr(colon + 1);
    require(
        std::none_of(value.begin(), value.end(), [](char byte) { return (byte >= 0 && byte < ' ' && byte != '\t') || byte == '\x7f'; }));
    return { line.substr(0, colon), trimmed(value) };
}

RequestHeader readRequestHeader(std::string_view text)
{
    RequestHeader header;
    Fields fields(header);
    for (int number = 0; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find("\r\n"), text.size());
        const auto line = text.substr(0, end);
        if (number == 0)
            readRequestLine(line, header.request);
        else
            fields.take(readHeaderField(line));
        require(number <= mostFields, 431);
        text.remove_prefix(std::min(end + 2, text.size()));
    }
    fields.finish();
    return header;
}

} // namespace server
