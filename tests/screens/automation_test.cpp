#include "tests/screens/client_process.h"
#include "tests/screens/server_process.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

QJsonObject command(const char *what, const QJsonObject &arguments = {})
{
    QJsonObject command = arguments;
    command[u"do"] = QString::fromLatin1(what);
    return command;
}

QJsonObject screen(const char *name) { return { { QStringLiteral("screen"), QString::fromLatin1(name) } }; }

QJsonObject typing(const char *control, const QString &text)
{
    return { { QStringLiteral("control"), QString::fromUtf8(control) }, { QStringLiteral("text"), text } };
}

/// What a nightly script sees of a query that did not come about.
class Script : public testing::Test {
protected:
    QString file(const QString &name) const { return m_directory.filePath(name); }
    QJsonObject exporting(const QString &name) const
    {
        return command(
            "export", { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("file"), m_directory.filePath(name) } });
    }
    /// Opens a screen over a copy of the database that is then destroyed.
    void loseDatabase(ClientProcess &client)
    {
        client.obey(command("open", screen("frm_ManCome111")));
        QFile lost(copy());
        ASSERT_TRUE(lost.resize(4096 * 3));
    }
    QString copy()
    {
        const QString copy = file(QStringLiteral("copy.db"));
        if (!QFile::exists(copy))
            QFile::copy(ClientProcess::database(), copy);
        return copy;
    }
    QStringList onCopy() { return { QStringLiteral("--database"), QString(u"sqlite:" + copy()) }; }

    QTemporaryDir m_directory;
};

TEST_F(Script, HearsThatAQueryFailedAndGetsNoFile)
{
    ClientProcess client(onCopy());
    loseDatabase(client);
    const QJsonObject reply = client.ask(command("query"));
    EXPECT_FALSE(reply[u"ok"].toBool(true));
    EXPECT_FALSE(reply[u"error"].toString().isEmpty());
    EXPECT_EQ(client.ask(exporting(QStringLiteral("down.xlsx")))[u"error"].toString(), QStringLiteral("没有可导出的数据，请先查询！"));
    EXPECT_FALSE(QFile::exists(file(QStringLiteral("down.xlsx"))));
    EXPECT_EQ(client.quit(), 0);
}

TEST_F(Script, HearsThatAScreenRefusedAndWhatPrintingSaid)
{
    ClientProcess client;
    client.obey(command("open", screen("frm_MonthSendBill111")));
    const QJsonObject print = client.ask(command("print", { { QStringLiteral("control"), QStringLiteral("Button2") } }));
    EXPECT_EQ(print[u"error"].toString(), QStringLiteral("详细：没有可打印的数据！"));
    const QJsonObject asked = client.obey(command("query"));
    EXPECT_TRUE(asked[u"asked"].toBool());
    EXPECT_FALSE(asked.contains(u"messages"));

    client.obey(command("open", screen("frm_ManCome111")));
    client.obey(command("set", typing("DBDateTimeEditEh1", QStringLiteral("2026-01-01 00:00:00"))));
    const QJsonObject refused = client.obey(command("query"));
    EXPECT_FALSE(refused[u"asked"].toBool(true));
    EXPECT_EQ(refused[u"messages"].toArray(), QJsonArray({ QStringLiteral("详细：结束日期不能超过开始日期\"31\"天！") }));
    EXPECT_EQ(client.quit(), 0);
}

TEST_F(Script, ThatIsStrictEndsAtTheFirstFailureOrRefusal)
{
    const QStringList strict(QStringLiteral("--strict"));
    {
        ClientProcess client(strict + onCopy());
        loseDatabase(client);
        EXPECT_FALSE(client.ask(command("query"))[u"ok"].toBool(true));
        EXPECT_EQ(client.ask(command("forms")), QJsonObject()) << "obeyed another command";
        EXPECT_EQ(client.quit(), 1);
    }
    {
        ClientProcess client(strict);
        client.obey(command("open", screen("frm_ManCome111")));
        client.obey(command("set", typing("DBDateTimeEditEh1", QStringLiteral("2026-01-01 00:00:00"))));
        EXPECT_FALSE(client.obey(command("query"))[u"asked"].toBool(true));
        EXPECT_EQ(client.quit(), 1);
    }
    ClientProcess client(strict);
    client.obey(command("open", screen("frm_ManCome111")));
    client.obey(command("query"));
    EXPECT_GT(client.obey(exporting(QStringLiteral("all.csv")))[u"rows"].toInt(), 0);
    EXPECT_EQ(client.quit(), 0);
}

QString contentOf(const QString &name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return QString::fromUtf8(file.readAll());
}

TEST_F(Script, SeesARowLimitOnTheScreenOnPaperAndInTheReplies)
{
    const ServerProcess server(0, {}, 20);
    ClientProcess client(ServerProcess::clientOptions({ &server }));
    const QString notice = QStringLiteral("已截断：只有前 20 行");
    client.obey(command("open", screen("frm_MonthSendBill111")));
    client.obey(command("query"));
    const QJsonObject current { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("row"), 0 },
        { QStringLiteral("field"), QStringLiteral("bill_count") }, { QStringLiteral("doubleClick"), true } };
    client.obey(command("cell", current));
    const QJsonObject above = client.obey(command("get", { { QStringLiteral("control"), QStringLiteral("DataView1.Panel1") } }));
    EXPECT_TRUE(above[u"visible"].toBool());
    EXPECT_TRUE(above[u"caption"].toString().startsWith(notice)) << above[u"caption"].toString().toStdString();
    EXPECT_TRUE(above[u"caption"].toString().endsWith(u"明细 20 行，与汇总不符"));

    for (const char *button : { "", "Button2" }) {
        const QString paper = file(QStringLiteral("paper.html"));
        QJsonObject printing { { QStringLiteral("file"), paper } };
        if (*button)
            printing[u"control"] = QString::fromLatin1(button);
        const QJsonObject printed = client.obey(command("print", printing));
        EXPECT_TRUE(printed[u"truncated"].toBool()) << button;
        EXPECT_EQ(printed[u"rows"].toInt(), 20) << button;
        EXPECT_EQ(contentOf(paper).count(notice), 2) << "under the title and in the page's foot: " << button;
    }
    const QJsonObject exported = client.obey(command("export",
        { { QStringLiteral("file"), file(QStringLiteral("cut.csv")) }, { QStringLiteral("view"), QStringLiteral("DataView1") } }));
    EXPECT_TRUE(exported[u"truncated"].toBool());
    EXPECT_TRUE(contentOf(file(QStringLiteral("cut.csv"))).endsWith(notice + QStringLiteral("\r\n")));
    client.obey(command("key",
        { { QStringLiteral("control"), QStringLiteral("DataView1.DataViewGrid") }, { QStringLiteral("key"), QStringLiteral("Ctrl+A") } }));
    EXPECT_TRUE(client.obey(command("copy"))[u"text"].toString().endsWith(notice + QStringLiteral("\r\n")));
    const QJsonArray footers
        = client.obey(command("footer", { { QStringLiteral("view"), QStringLiteral("DataView1") } }))[u"rows"][0].toArray();
    EXPECT_TRUE(footers.contains(QStringLiteral("记录数(截断)")));
}

TEST_F(Script, FindsTheSummaryRowWithTheDetailThatBelongsToIt)
{
    ClientProcess client;
    client.obey(command("open", screen("frm_ManCome111")));
    client.obey(command("query"));
    const QJsonObject rows
        = client.obey(command("rows", { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("count"), 1 } }));
    const QJsonArray summary = rows[u"rows"][0].toArray();
    client.obey(command("cell",
        { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("row"), 0 },
            { QStringLiteral("field"), QStringLiteral("BILLCOUNT") }, { QStringLiteral("doubleClick"), true } }));
    const QString row = QStringLiteral("片区=%1，班次=%2，扫描人=%3，票数=%4")
                            .arg(summary[0].toString(), summary[1].toString(), summary[2].toString(), summary[3].toString());
    EXPECT_EQ(client.obey(command("get", { { QStringLiteral("control"), QStringLiteral("DataView1.Panel1") } }))[u"caption"].toString(),
        QString(u"汇总行：" + row));
    const QJsonObject page { { QStringLiteral("view"), QStringLiteral("DataView1") },
        { QStringLiteral("file"), file(QStringLiteral("a.html")) } };
    client.obey(command("export", page));
    EXPECT_TRUE(contentOf(file(QStringLiteral("a.html"))).contains(row));
    client.obey(command("print", { { QStringLiteral("file"), file(QStringLiteral("paper.html")) } }));
    EXPECT_TRUE(contentOf(file(QStringLiteral("paper.html"))).contains(row));
}

TEST_F(Script, FiltersChartsPinsAndComparesByCaptions)
{
    ClientProcess client;
    client.obey(command("open", screen("frm_ManCome111")));
    client.obey(command("set", typing("扫描网点", QStringLiteral("北京"))));
    EXPECT_EQ(client.textOf(QStringLiteral("DBLookupComboboxEh1")), QStringLiteral("北京"));
    client.obey(command("query"));
    const QJsonObject all = client.obey(command("rows"));
    const QString man = all[u"rows"][0][2].toString();
    const QJsonObject values { { QStringLiteral("field"), QStringLiteral("scan_man") }, { QStringLiteral("values"), QJsonArray { man } } };
    const QJsonObject kept = client.obey(command("filter", values));
    EXPECT_EQ(kept[u"total"], all[u"total"]);
    EXPECT_EQ(kept[u"filter"].toString(), QStringLiteral("扫描人＝") + man);
    const QJsonObject exported = client.obey(command("export", { { QStringLiteral("file"), file(QStringLiteral("part.csv")) } }));
    EXPECT_EQ(exported[u"rows"], kept[u"rows"]);
    EXPECT_EQ(exported[u"filter"], kept[u"filter"]);
    EXPECT_EQ(client.obey(command("filter"))[u"rows"], all[u"total"]);

    const QJsonObject chart = client.obey(command("chart",
        { { QStringLiteral("kind"), QStringLiteral("shares") }, { QStringLiteral("field"), QStringLiteral("scan_man") },
            { QStringLiteral("file"), file(QStringLiteral("part.svg")) } }));
    EXPECT_EQ(chart[u"labels"][0].toString(), man);
    EXPECT_TRUE(QFile::exists(file(QStringLiteral("part.svg"))));

    client.obey(command("command", { { QStringLiteral("text"), QStringLiteral("固定结果") } }));
    client.obey(command("query"));
    client.obey(command("command", { { QStringLiteral("text"), QStringLiteral("与固定结果比较") } }));
    EXPECT_EQ(client.obey(command("forms"))[u"forms"].toArray().size(), 3);
    EXPECT_FALSE(client.ask(command("command", { { QStringLiteral("text"), QStringLiteral("没有的") } }))[u"ok"].toBool(true));
    EXPECT_EQ(client.quit(), 0);
}

} // namespace
