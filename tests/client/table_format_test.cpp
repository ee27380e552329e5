#include "client/export/table_format.h"

#include <gtest/gtest.h>

using namespace client;

namespace {

std::string cell(const char16_t *fileName, std::string_view text)
{
    files::TextBuffer out;
    TableFormat::of(QString::fromUtf16(fileName))->appendText(out, text);
    return std::string(out.view());
}

TEST(TableFormat, TheSeparatorDecidesWhatIsQuoted)
{
    EXPECT_EQ(cell(u"a.CSV", "c\td"), "c\td");
    EXPECT_EQ(cell(u"a.csv", "＝1,2"), "\"\t＝1,2\"");
    EXPECT_EQ(cell(u"a.txt", "c\td"), "\"c\td\"");
    EXPECT_EQ(cell(u"a.txt", "a,b"), "a,b");
}

TEST(TableFormat, CodesStayCodesInASpreadsheetWhenWanted)
{
    const auto guarded = TableFormat::of(QStringLiteral("a.csv"), files::TabGuard::Numbers);
    const auto cell = [&guarded](std::string_view text) {
        files::TextBuffer out;
        guarded->appendText(out, text);
        return std::string(out.view());
    };
    for (const char *code : { "010000016", "268004223517", "1E5", "3-1", "2026/2/3", "8:30", "-7", "7%" })
        EXPECT_EQ(cell(code), std::string("\"\t") + code + '"') << code;
    for (const char *text : { "北京2", "", "e", "A12", "7\"" })
        EXPECT_EQ(cell(text).find('\t'), std::string::npos) << text;
}

TEST(TableFormat, MarksOfTheFormAreEscaped)
{
    EXPECT_EQ(cell(u"a.json", "a\"b\\c\n\x1f北"), "\"a\\\"b\\\\c\\u000a\\u001f北\"");
    EXPECT_EQ(cell(u"a.html", "<b>\"小心\"&</b>"), "&lt;b&gt;&quot;小心&quot;&amp;&lt;/b&gt;");
}

TEST(TableFormat, AnUnknownEndingNamesNone)
{
    EXPECT_EQ(TableFormat::of(QStringLiteral("a.doc")), nullptr);
    EXPECT_EQ(TableFormat::of(QStringLiteral("csv")), nullptr);
}

} // namespace
