#pragma once

#include "packet/utf8.h"

#include <cstdint>
#include <string_view>

namespace packet {

/// Appends what stands for a byte in a JSON string that cannot stand there itself: a quote, a backslash, a control character, or a
/// byte of a broken character.
template <class Out>
void appendJsonEscape(char byte, Out &out)
{
    constexpr std::string_view digits = "0123456789abcdef";
    if (static_cast<unsigned char>(byte) >= 0x80) {
        out += std::string_view("\uFFFD");
    } else if (byte == '"' || byte == '\\') {
        out += '\\';
        out += byte;
    } else {
        out += std::string_view("\\u00");
        out += digits[std::size_t(byte) >> 4];
        out += digits[std::size_t(byte) & 15];
    }
}

/// Appends the text as a JSON string, quotes included; bytes that are no UTF-8 become U+FFFD. `Out` takes a character and a
/// std::string_view by +=. Costs one pass to check the text and one to copy it.
template <class Out>
void appendJsonText(std::string_view text, Out &out)
{
    const bool sound = isUtf8(text);
    out += '"';
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        std::size_t plain = byte >= ' ' && byte != '"' && byte != '\\' ? 1 : 0;
        if (byte >= 0x80 && !sound)
            plain = characterSize(text.substr(at));
        if (plain > 0) {
            at += plain;
            continue;
        }
        out += text.substr(copied, at - copied);
        appendJsonEscape(text[at], out);
        copied = ++at;
    }
    out += text.substr(copied);
    out += '"';
}

} // namespace packet
