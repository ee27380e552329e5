#include "client/export/table_format.h"

#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

namespace {

QByteArray row(const char16_t *fileName, const QList<ExportCell> &cells)
{
    QByteArray out;
    TableFormat::of(QString::fromUtf16(fileName))->appendRow(out, cells);
    return out;
}

TEST(TableFormat, CsvQuotesAndDisarmsAsNeeded)
{
    const std::pair<const char16_t *, const char *> cells[] = {
        { u"北京", "北京" },
        { u"", "" },
        { u"a,b", "\"a,b\"" },
        { u"say \"hi\"", "\"say \"\"hi\"\"\"" },
        { u"two\nlines", "\"two\nlines\"" },
        { u"-12.5", "-12.5" },
        { u"+86", "+86" },
        { u"-1.2.3", "\"\t-1.2.3\"" },
        { u"-", "\"\t-\"" },
        { u"-inf", "\"\t-inf\"" },
        { u"=1+1", "\"\t=1+1\"" },
        { u"=\"a\"", "\"\t=\"\"a\"\"\"" },
        { u"@sum", "\"\t@sum\"" },
        { u"\tx", "\"\t\tx\"" },
        { u"268004223517", "268004223517" },
    };
    for (const auto &[text, expected] : cells)
        EXPECT_EQ(row(u"a.CSV", { { QString::fromUtf16(text) } }), QByteArray(expected) + "\r\n");
}

TEST(TableFormat, TheSeparatorDecidesWhatIsQuoted)
{
    const QList<ExportCell> cells { { QStringLiteral("a,b") }, { QStringLiteral("c\td") } };
    EXPECT_EQ(row(u"a.csv", cells), QByteArray("\"a,b\",c\td\r\n"));
    EXPECT_EQ(row(u"a.txt", cells), QByteArray("a,b\t\"c\td\"\r\n"));
}

TEST(TableFormat, JsonKeepsCodesAsTextAndNumbersAsNumbers)
{
    const auto format = TableFormat::of(QStringLiteral("a.json"));
    QByteArray out;
    format->appendTitles(out, { { QStringLiteral("编号") }, { QStringLiteral("费用") } });
    format->appendRow(out, { { QStringLiteral("007") }, { QStringLiteral("1.5"), true } });
    format->appendRow(out, { { QStringLiteral("a\"b\\c\n") }, { {}, true } });
    format->appendEnd(out, true);
    EXPECT_EQ(out,
        QByteArray(
            "{\"columns\":[\"编号\",\"费用\"],\"rows\":[\n[\"007\",1.5],\n[\"a\\u0022b\\u005cc\\u000a\",null]\n],\"truncated\":true}\n"));
}

TEST(TableFormat, AnUnknownEndingIsRefused)
{
    EXPECT_THROW(TableFormat::of(QStringLiteral("a.doc")), Exception);
    EXPECT_THROW(TableFormat::of(QStringLiteral("csv")), Exception);
}

} // namespace
