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
