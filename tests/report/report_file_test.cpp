#include "tests/report/report_rows.h"

#include <QFile>

#include <random>

namespace {

using namespace report;

const QByteArray goodReport = "report 1\n"
                              "# a comment\n"
                              "page\n"
                              "    title = 清单\n"
                              "    orientation = landscape\n"
                              "band group-header A\n"
                              "    by = LEFT_SITE\n"
                              "    height = 5\n"
                              "band master\n"
                              "    height = 12.5\n"
                              "memo Bill\n"
                              "    box = 1 2 30 4.25\n"
                              "    text = \"单号\\n[BILL_CODE]\"\n"
                              "    font = \"Noto Sans CJK SC\" 10.5 bold underline\n"
                              "    align = right middle\n"
                              "    frame = left bottom\n"
                              "    fill = #ff8000\n"
                              "line\n"
                              "    box = 0 12 100 0\n"
                              "    line-style = dash\n"
                              "end\n";

TEST(ReportFile, ReadsWhatAPersonWrites)
{
    const Definition report = parseDefinition(goodReport, QStringLiteral("a.frf"));
    EXPECT_EQ(report.title, QStringLiteral("清单"));
    EXPECT_EQ(report.paper, QSize(29700, 21000));
    ASSERT_EQ(report.bands.size(), 2);
    EXPECT_EQ(report.bands[0].groupBy, QStringLiteral("[LEFT_SITE]"));
    EXPECT_EQ(report.bands[1].height, 1250);
    const Object &memo = report.bands[1].objects[0];
    EXPECT_EQ(memo.box, QRect(100, 200, 3000, 425));
    EXPECT_EQ(memo.text, QStringLiteral("单号\n[BILL_CODE]"));
    EXPECT_EQ(memo.style.family, QStringLiteral("Noto Sans CJK SC"));
    EXPECT_EQ(memo.style.points, 10.5);
    EXPECT_TRUE(memo.style.bold && memo.style.underline && !memo.style.italic);
    EXPECT_EQ(memo.style.alignment, Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(memo.style.sides, LeftSide | BottomSide);
    EXPECT_EQ(memo.style.fill, QColor(255, 128, 0));
    EXPECT_EQ(report.bands[1].objects[1].style.lineStyle, Qt::DashLine);
}

TEST(ReportFile, ErrorsNameLineAndColumn)
{
    const struct {
        QByteArray text;
        QString message;
    } cases[] {
        { "", QStringLiteral("第 1 行第 1 列：缺少最后一行“end”，文件可能不完整。") },
        { "frf\nend\n", QStringLiteral("第 1 行第 1 列：第一行应是“report 1”。") },
        { "report 1\nband master\nheight = 5\n", QStringLiteral("第 4 行第 1 列：缺少最后一行“end”，文件可能不完整。") },
        { "report 1\nband  details\nend\n", QStringLiteral("第 2 行第 7 列：不认识的带区“details”。") },
        { "report 1\nband master\n  button X\nend\n", QStringLiteral("第 3 行第 3 列：不认识的对象“button”。") },
        { "report 1\nmemo\nend\n", QStringLiteral("第 2 行第 1 列：对象必须在带区之内：此前缺少 band。") },
        { "report 1\nband master\n  height = 5\n  colour = red\nend\n", QStringLiteral("第 4 行第 3 列：不认识的属性“colour”。") },
        { "report 1\nband master\n  height = 5\n  height = 6\nend\n", QStringLiteral("第 4 行第 3 列：属性“height”重复。") },
        { "report 1\nband master\nheight = five\nend\n", QStringLiteral("第 3 行第 10 列：此处应是数字。") },
        { "report 1\nband master\nheight = nan\nend\n", QStringLiteral("第 3 行第 10 列：此处应是数字。") },
        { "report 1\nband master\nheight = 99999\nend\n", QStringLiteral("第 3 行第 10 列：数字应在 0 和 2000 之间。") },
        { "report 1\nband master\nheight = 5 6\nend\n", QStringLiteral("第 3 行第 12 列：此后多出“6”。") },
        { "report 1\nband master\nheight = 5\nmemo\nbox = 0 0 9\nend\n", QStringLiteral("第 5 行第 12 列：此处应是数字。") },
        { "report 1\nband master\nheight = 5\nmemo\ncolor = blau\nend\n",
            QStringLiteral("第 5 行第 9 列：颜色应写成 #rrggbb、英文颜色名或 none。") },
        { "report 1\nband master\nheight = 5\nmemo\ntext = 单号 [BILL_CODE\nend\n", QStringLiteral("第 5 行第 11 列：“[”没有对应的“]”。") },
        { "report 1\nband master\nheight = 5\nmemo\ntext = [A + ]\nend\n", QStringLiteral("第 5 行第 13 列：表达式不完整。") },
        { "report 1\nband master\nheight = 5\nmemo\ntext = \"a\\nb[SUMM(A)]\"\nend\n",
            QStringLiteral("第 5 行第 14 列：不认识的函数“SUMM”。") },
        { "report 1\nband master\nheight = 5\nmemo\ntext = \"open\nend\n", QStringLiteral("第 5 行第 8 列：引号没有结束。") },
        { "report 1\nband master\nheight = 5\nmemo A\nmemo a\nend\n", QStringLiteral("第 5 行第 1 列：对象名“a”重复。") },
        { "report 1\nband master\nheight = 5\nmemo\nbox = 0 1 9 5\nend\n", QStringLiteral("第 4 行第 1 列：对象超出带区的高度。") },
        { "report 1\nband group-footer X\nheight = 5\nend\n", QStringLiteral("第 2 行第 1 列：分组尾“X”之前没有同名的分组头。") },
        { "report 1\nband title\nband title\nend\n", QStringLiteral("第 3 行第 1 列：这种带区只能有一个。") },
        { "report 1\nend\nmemo\n", QStringLiteral("第 3 行第 1 列：“end”之后不能再有内容。") },
        { "report 1\nba\xff\nend\n", QStringLiteral("第 2 行第 3 列：不是 UTF-8 文本，报表文件应是文本文件。") },
        { QByteArray("report 1\n\nPK\0\3\nend\n", 19), QStringLiteral("第 3 行第 3 列：不是 UTF-8 文本，报表文件应是文本文件。") },
    };
    for (const auto &[text, message] : cases)
        EXPECT_EQ(errorOf([&] { parseDefinition(text, QStringLiteral("a.frf")); }), QStringLiteral("报表文件“a.frf”") + message)
            << text.constData();
}

TEST(ReportFile, ErrorsAgainstTheDatasetNameThePlaceToo)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(3));
    const auto prepare = [&](const QByteArray &bands) { return errorOf([&] { PreparedReport(smallReport(bands), &rows); }); };
    EXPECT_EQ(prepare(band("master", 10, "a [N] [MISSING]")), QStringLiteral("报表文件“t.frf”第 9 行第 15 列：数据中没有字段“MISSING”。"));
    EXPECT_EQ(prepare(band("title", 10, "[SUM(V)]")),
        QStringLiteral("报表文件“t.frf”第 9 行第 9 列：合计只能放在数据行、分组尾、栏尾、页脚或总结之内。"));
    EXPECT_EQ(
        prepare(band("master", 10, "[SUM(V, PAGE)]")), QStringLiteral("报表文件“t.frf”第 9 行第 9 列：本页合计只能放在栏尾或页脚之内。"));
    EXPECT_EQ(prepare(band("master", 90, "[N]")), QStringLiteral("报表不能排版：带区的高度加起来超过一页，请减小带区高度或页边距。"));
}

/// The example of docs/report-files.md is read from there and printed.
TEST(ReportFile, TheDocumentedExampleWorks)
{
    QFile file(QStringLiteral(KELVARA_SOURCES "/docs/report-files.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray page = file.readAll();
    const qsizetype begin = page.indexOf("```frf\n") + 7;
    TCustomClientDataSet rows;
    rows.setData(packetOf("PRE_OR_NEXT_STATION:text,BILL_CODE:text,SCAN_DATE:time,WEIGHT:decimal,REMARK:text\n"
                          "上海,200000000001,2026-10-01 08:15:00,1200.5,\n"
                          "上海,200000000002,2026-10-02 09:00:00,0.25,易碎\n"
                          "天津,200000000003,2026-10-02 10:30:00,3,\n"));
    PreparedReport prepared(parseDefinition(page.mid(begin, page.indexOf("```", begin) - begin), QStringLiteral("例.frf")), &rows);
    EXPECT_EQ(pagesOf(prepared).join(u'/'),
        QStringLiteral("发件清单|运单编号|扫描时间|重量|备注|下一站：上海|200000000001|2026-10-01 08:15|1,200.50|200000000002|2026-10-02 "
                       "09:00|0.25|易碎|"
                       "小计：2 票|1,200.75|下一站：天津|200000000003|2026-10-02 10:30|3.00|小计：1 票|3.00|总计：3 票|1,203.75|"
                       "发件人签字：|接收人签字：|打印人：|打印时间："));
}

/// Whatever happens to a file, it is read or refused with a message, and what is read can be laid out or is refused.
TEST(ReportFile, ABrokenFileIsRefusedAndNothingElse)
{
    TCustomClientDataSet rows;
    rows.setData(packetOf("LEFT_SITE:text,BILL_CODE:text\nA,1\nA,2\nB,3\n"));
    std::mt19937 random(20261123);
    const QByteArray pieces[] { "[", "]", "\"", "=", "band master\n", "memo\n", "1e308", "-1", "\n", "end\n", "SUM(", "[[", "99999999999",
        "by = A\n", "grow = yes\n" };
    int refused = 0;
    for (int round = 0; round < 4000; ++round) {
        QByteArray text = goodReport;
        for (int change = int(random() % 4); change >= 0; --change) {
            const auto place = qsizetype(random() % std::size_t(text.size()));
            switch (random() % 4) {
            case 0:
                text[place] = char(random() % 256);
                break;
            case 1:
                text.insert(place, pieces[random() % std::size(pieces)]);
                break;
            case 2:
                text.remove(place, qsizetype(random() % 20));
                break;
            default:
                text.insert(place, text.mid(qsizetype(random() % std::size_t(text.size())), qsizetype(random() % 60)));
            }
            if (text.isEmpty())
                break;
        }
        try {
            PreparedReport prepared(parseDefinition(text, QStringLiteral("a.frf")), &rows);
            for (int page = 0; page < 50 && prepared.prepareNextPage(); ++page) { }
        } catch (const Exception &exception) {
            ++refused;
            EXPECT_FALSE(exception.message().isEmpty());
        }
    }
    EXPECT_GT(refused, 1000);
    EXPECT_LT(refused, 3900);
}

} // namespace
