#include "server/base/json.h"

#include "packet/utf8.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <set>

namespace server {

namespace {

/// The bytes of the character at the beginning when it may stand in a JSON string as it is; 0 when it has to be escaped or is broken.
std::size_t plainSize(std::string_view text)
{
    const auto first = std::uint8_t(text.front());
    if (first < 0x80)
        return first >= ' ' && first != '"' && first != '\\' ? 1 : 0;
    const std::size_t size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (size == 0 || size > text.size())
        return 0;
    return packet::isUtf8(text.substr(0, size)) ? size : 0;
}

void appendEscape(char byte, std::string &out)
{
    constexpr std::string_view digits = "0123456789abcdef";
    if (byte < 0) {
        out += "\uFFFD";
    } else if (byte == '"' || byte == '\\') {
        out += '\\';
        out += byte;
    } else {
        out += "\\u00";
        out += digits[std::size_t(byte) >> 4];
        out += digits[std::size_t(byte) & 15];
    }
}

} // namespace

std::optional<std::map<std::string, std::string>> readJsonTexts(std::string_view json)
{
    using Json = nlohmann::json;
    std::set<std::string> names;
    bool namesDiffer = true;
    const auto look = [&](int, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::key)
            namesDiffer = names.insert(parsed.get<std::string>()).second && namesDiffer;
        return true;
    };
    const Json object = Json::parse(json, look, false);
    if (!object.is_object() || !namesDiffer)
        return std::nullopt;
    std::map<std::string, std::string> texts;
    for (const auto &[name, value] : object.items()) {
        if (!value.is_string())
            return std::nullopt;
        texts.emplace(name, value.get<std::string>());
    }
    return texts;
}

void appendJsonText(std::string_view text, std::string &out)
{
    out += '"';
    std::size_t begin = 0; // of what has not been appended yet
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = plainSize(text.substr(at));
        if (size > 0) {
            at += size;
            continue;
        }
        out.append(text, begin, at - begin);
        appendEscape(text[at], out);
        begin = ++at;
    }
    out.append(text, begin);
    out += '"';
}

std::string jsonText(std::string_view text)
{
    std::string out;
    appendJsonText(text, out);
    return out;
}

} // namespace server
