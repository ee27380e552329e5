#include "server/base/table_text.h"

#include <algorithm>

namespace server {

std::string padded(std::string text, std::size_t columns)
{
    std::size_t width = 0;
    for (const char byte : text) {
        const auto lead = static_cast<unsigned char>(byte);
        width += lead >= 0xE1 ? 2 : (lead & 0xC0) == 0x80 ? 0 : 1;
    }
    return text.append(width < columns ? columns - width : 1, ' ');
}

std::string oneLine(std::string text)
{
    constexpr std::size_t shown = 160;
    std::size_t size = std::min(text.size(), shown);
    while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size;
    const bool isCut = size < text.size();
    text.resize(size);
    for (char &byte : text)
        if (byte >= 0 && byte < ' ')
            byte = ' ';
    return isCut ? text + "…" : text;
}

} // namespace server
