#include "platform/files/cell_text.h"

#include <gtest/gtest.h>

namespace {

using files::TextBuffer;

TEST(CellText, SeparatedCellsAreQuotedAndDisarmedAsNeeded)
{
    const std::pair<const char *, const char *> cells[] = {
        { "北京", "北京" },
        { "", "" },
        { "a,b", "\"a,b\"" },
        { "c\td", "c\td" },
        { "say \"hi\"", "\"say \"\"hi\"\"\"" },
        { "two\nlines", "\"two\nlines\"" },
        { "-12.5", "-12.5" },
        { "+86", "+86" },
        { "-1.2.3", "\"\t-1.2.3\"" },
        { "-", "\"\t-\"" },
        { "-inf", "\"\t-inf\"" },
        { "=1+1", "\"\t=1+1\"" },
        { "=\"a\"", "\"\t=\"\"a\"\"\"" },
        { "@sum", "\"\t@sum\"" },
        { "\tx", "\"\t\tx\"" },
        { "\n=1", "\"\t\n=1\"" },
        { "＝1+1", "\"\t＝1+1\"" },
        { "＋86", "\"\t＋86\"" },
        { "－5", "\"\t－5\"" },
        { "＠sum", "\"\t＠sum\"" },
        { "，全角", "，全角" }, // shares its first bytes with the full-width signs
        { "268004223517", "268004223517" },
    };
    const files::SeparatedCells commas(',');
    for (const auto &[text, expected] : cells) {
        TextBuffer out;
        commas.append(out, text);
        EXPECT_EQ(out.view(), expected);
    }
}

TEST(CellText, TheClipboardQuotesOnlyWhatASpreadsheetWouldMisread)
{
    const std::pair<const char *, const char *> cells[] = {
        { "say \"hi\"", "say \"hi\"" },
        { "\"易碎\" 小心", "\"\"\"易碎\"\" 小心\"" },
        { "two\nlines \"a\"", "\"two\nlines \"\"a\"\"\"" },
        { "a,b", "a,b" },
    };
    for (const auto &[text, expected] : cells) {
        TextBuffer out;
        files::appendClipboardCell(out, text);
        EXPECT_EQ(out.view(), expected);
    }
}

} // namespace
