#include "server/http/request.h"

#include <algorithm>

namespace server {

namespace {

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

} // namespace server
