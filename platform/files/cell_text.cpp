#include "platform/files/cell_text.h"

#include <algorithm>

namespace files {

namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Sign, digits, at most one point: what a spreadsheet reads as a number however it begins.
bool isPlainNumber(std::string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    return std::ranges::any_of(text, isDigit) && std::ranges::count(text, '.') <= 1
        && std::ranges::all_of(text, [](char letter) { return isDigit(letter) || letter == '.'; });
}

bool beginsLikeFormula(std::string_view text)
{
    if (text.empty())
        return false;
    if (std::string_view("=+-@\t\r\n").find(text.front()) != std::string_view::npos)
        return true;
    static constexpr std::string_view fullWidth[] { "＝", "＋", "－", "＠" };
    return std::ranges::any_of(fullWidth, [text](std::string_view letter) { return text.starts_with(letter); });
}

/// Digits and what stands between those of numbers, dates and times.
bool readsAsNumber(std::string_view text)
{
    return std::ranges::any_of(text, isDigit) && text.find_first_not_of("0123456789.,+-/: %eE") == std::string_view::npos;
}

void appendQuoted(TextBuffer &out, std::string_view text)
{
    for (const char letter : text) {
        if (letter == '"')
            out += '"';
        out += letter;
    }
    out += '"';
}

} // namespace

bool runsAsFormula(std::string_view text) { return beginsLikeFormula(text) && !isPlainNumber(text); }

SeparatedCells::SeparatedCells(char separator, TabGuard guard)
    : m_guard(guard)
{
    for (const char letter : { '"', '\n', '\r', separator })
        m_special[static_cast<unsigned char>(letter)] = true;
}

void SeparatedCells::append(TextBuffer &out, std::string_view text) const
{
    const bool guarded = runsAsFormula(text) || (m_guard == TabGuard::Numbers && readsAsNumber(text));
    if (!guarded && std::ranges::none_of(text, [this](char letter) { return m_special[static_cast<unsigned char>(letter)]; })) {
        out += text;
        return;
    }
    out += guarded ? "\"\t" : "\"";
    appendQuoted(out, text);
}

void appendClipboardCell(TextBuffer &out, std::string_view text)
{
    if (!text.starts_with('"') && text.find_first_of("\t\n\r") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    appendQuoted(out, text);
}

void appendHtmlText(TextBuffer &out, std::string_view text)
{
    for (const char letter : text) {
        if (letter == '<')
            out += "&lt;";
        else if (letter == '>')
            out += "&gt;";
        else if (letter == '&')
            out += "&amp;";
        else if (letter == '"')
            out += "&quot;";
        else
            out += letter;
    }
}

} // namespace files
