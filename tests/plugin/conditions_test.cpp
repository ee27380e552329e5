#include "plugin/util/conditions.h"

#include "packet/builder.h"
#include "tests/plugin/fake_host.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(CheckDateRange, AcceptsUpToTheLimitAndTellsWhyItRefuses)
{
    struct Case {
        const char16_t *start;
        const char16_t *end;
        int days;
        const char16_t *message; ///< empty: accepted
    };
    const Case cases[] = {
        { u"2024-01-01 00:00:00", u"2024-02-01 00:00:00", 31, u"" },
        { u"2024-01-01 00:00:00", u"2024-01-01 00:00:00", 3, u"" },
        { u"2024-01-01 00:00:00", u"2024-02-01 00:00:01", 31, u"详细：结束日期不能超过开始日期\"31\"天！|日期时间错误|48" },
        { u"2024-05-01 12:00:00", u"2024-05-04 12:00:01", 3, u"详细：结束日期不能超过开始日期\"3\"天！|日期时间错误|48" },
        { u"2024-01-01 00:00:01", u"2024-01-01 00:00:00", 31, u"详细：结束日期不能比开始日期还早！|日期时间错误|48" },
        { u"2034-01-01 00:00:00", u"2024-01-01 00:00:00", 31, u"详细：结束日期不能比开始日期还早！|日期时间错误|48" },
        { u"2024-02-30 00:00:00", u"2024-03-01 00:00:00", 31, u"详细：您所输入的日期时间错误！|日期时间格式|48" },
        { u"2024-02-01 00:00:00", u"", 31, u"详细：您所输入的日期时间错误！|日期时间格式|48" },
    };
    FakeHost host;
    for (const Case &range : cases) {
        const QString start = QString::fromUtf16(range.start);
        const QString end = QString::fromUtf16(range.end);
        const QString message = QString::fromUtf16(range.message);
        host.log.clear();
        EXPECT_EQ(CheckDateRange(start, end, range.days, true), !message.isEmpty()) << start.toStdString();
        EXPECT_EQ(host.log, message.isEmpty() ? QStringList() : QStringList(u"message " + message));
        host.log.clear();
        EXPECT_EQ(CheckDateRange(start, end, range.days, false), !message.isEmpty()) << end.toStdString();
        EXPECT_TRUE(host.log.isEmpty());
    }
}

TEST(GetScanTableName, KnowsFourKindsExactly)
{
    const std::pair<const char16_t *, const char16_t *> kinds[] = {
        { u"收件", u"TAB_SCAN_REC" },
        { u"发件", u"TAB_SCAN_SEND" },
        { u"到件", u"TAB_SCAN_COME" },
        { u"派件", u"TAB_SCAN_DISP" },
        { u"收件 ", u"TAB_SCAN_OTHER" },
        { u"留仓", u"TAB_SCAN_OTHER" },
        { u"", u"TAB_SCAN_OTHER" },
    };
    for (const auto &[kind, table] : kinds)
        EXPECT_EQ(GetScanTableName(QString::fromUtf16(kind)), QString::fromUtf16(table));
}

TEST(DataSetFieldToText, JoinsTheShownOrderAndKeepsTheCurrentRow)
{
    TCustomClientDataSet names;
    names.setData(textColumn("NAME", { QStringLiteral("A"), QStringLiteral("B'"), QStringLiteral("C") }));
    names.moveTo(1);
    QString joined = QStringLiteral("before");
    DataSetFieldToText(&names, QStringLiteral("name"), QStringLiteral("','"), joined);
    EXPECT_EQ(joined, QStringLiteral("A','B'','C"));
    EXPECT_EQ(names.recordIndex(), 1);
    EXPECT_FALSE(names.controlsDisabled());

    names.setData(textColumn("NAME", {}));
    DataSetFieldToText(&names, QStringLiteral("NAME"), QStringLiteral(","), joined);
    EXPECT_EQ(joined, QString());
}

TEST(LookupComboTextExit, CompletesByCodeKeepsNamesAndEmptiesTheRest)
{
    packet::Builder builder({ { "SITE_CODE", packet::ColumnType::Text }, { "SITE_NAME", packet::ColumnType::Text } });
    for (const auto &[code, name] : { std::pair("010", "北京"), std::pair("021", "上海"), std::pair("北京", "别名") }) {
        builder.addText(0, code);
        builder.addText(1, name);
        builder.endRow();
    }
    TCustomClientDataSet sites;
    sites.setData(builder.finish());
    TDataSource source;
    source.setDataSet(&sites);
    TDBLookupComboboxEh combo;
    combo.setListSource(&source);

    const auto leave = [&combo](const char16_t *text) {
        combo.setText(QString::fromUtf16(text));
        LookupComboTextExit(&combo);
        return combo.text();
    };
    combo.setFields(QStringLiteral("SITE_NAME"), QStringLiteral("SITE_NAME"), QStringLiteral("SITE_CODE"));
    EXPECT_EQ(leave(u"021"), QStringLiteral("上海"));
    EXPECT_EQ(leave(u"上海"), QStringLiteral("上海"));
    EXPECT_EQ(leave(u"北京"), QStringLiteral("别名")); // the code column is asked first
    EXPECT_EQ(leave(u"上"), QString());
    EXPECT_EQ(leave(u""), QString());
    combo.setFields(QStringLiteral("SITE_NAME"), QStringLiteral("SITE_NAME"), QStringLiteral("NO_SUCH_FIELD"));
    EXPECT_THROW(leave(u"上海"), DataSetError);
    combo.setListSource(nullptr);
    EXPECT_EQ(leave(u"上海"), QString());
}

} // namespace
