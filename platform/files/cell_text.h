#pragma once

#include "platform/files/text_buffer.h"

#include <array>
#include <string_view>

/// How cells stand in text files, on web pages and on the clipboard, so that whatever opens them shows the same text and runs none
/// of it. All texts are UTF-8.
namespace files {

/// True for a text that a spreadsheet would run: it begins like a formula, also in full-width letters, and is no plain number.
bool runsAsFormula(std::string_view text);

/// Which texts begin with a tab, so that a spreadsheet takes them for texts: those that it would run; or also those that it would read
/// as a number or a time, and lose zeros and digits of.
enum class TabGuard { Formulas, Numbers };

/// The cells of a file with separators between, as RFC 4180 quotes them.
class SeparatedCells {
public:
    explicit SeparatedCells(char separator, TabGuard guard = TabGuard::Formulas);

    /// Appends one cell without its separator, quoted where needed.
    void append(TextBuffer &out, std::string_view text) const;

private:
    TabGuard m_guard;
    std::array<bool, 256> m_special {}; ///< letters for which a cell is quoted
};

/// Appends one cell of tab-separated lines on the clipboard. Quoted only where a spreadsheet would take it for something else, as
/// spreadsheets themselves do, so that a word processor gets the plain text.
void appendClipboardCell(TextBuffer &out, std::string_view text);

/// Appends text as it stands on a web page.
void appendHtmlText(TextBuffer &out, std::string_view text);

/// Style properties of table cells on a web page: a spreadsheet that takes the table over keeps codes as texts, however many digits
/// they have, and times as they are.
inline constexpr char textCellStyle[] = R"(mso-number-format:"\@")";
inline constexpr char timeCellStyle[] = R"(mso-number-format:"yyyy\-mm\-dd hh\:mm\:ss")";

} // namespace files
