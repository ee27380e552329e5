// Reports without a person, by the program itself: the files that the window gives, and what is said when there can be none.

#include "tests/engine/support.h"
#include "tests/screens/client_process.h"
#include "tests/screens/server_process.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>

namespace {

constexpr int patience = 120'000; // milliseconds
enum Code : int { rows = 0, failed = 1, wrong = 2, empty = 3 };

struct Said {
    int code = -1;
    QString errors;
    QList<QJsonObject> log;
};

class Report : public testing::Test {
protected:
    QString file(const QString &name) const { return m_folder.filePath(u"out/" + name); }
    QStringList files() const { return QDir(m_folder.filePath(QStringLiteral("out"))).entryList(QDir::Files | QDir::Hidden); }
    void SetUp() override { ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("out"))); }

    /// Runs the program; through a shell with `before` in front of it.
    Said run(const QStringList &arguments, const QString &before = {}) const
    {
        QStringList all { QStringLiteral("report"), QStringLiteral("--settings"), m_folder.filePath(QStringLiteral("settings")),
            QStringLiteral("--now"), ClientProcess::now() };
        if (!arguments.contains(QStringLiteral("--server")) && !arguments.contains(QStringLiteral("--database")))
            all << QStringLiteral("--database") << QString(u"sqlite:" + ClientProcess::database());
        all += arguments;
        QProcess process;
        const QString program = QStringLiteral(KELVARA_BIN "/kelvara-client");
        if (before.isEmpty())
            process.start(program, all);
        else
            process.start(QStringLiteral("bash"),
                QStringList { QStringLiteral("-c"), QString(before + u" exec \"$@\""), QStringLiteral("bash"), program } + all);
        EXPECT_TRUE(process.waitForFinished(patience));
        Said said { process.exitCode(), QString::fromUtf8(process.readAllStandardError()), {} };
        for (const QByteArray &line : process.readAllStandardOutput().split('\n')) {
            if (!line.isEmpty())
                said.log.append(QJsonDocument::fromJson(line).object());
        }
        return said;
    }
    /// The report fails like this, says this, and leaves nothing.
    void expectNone(const QStringList &arguments, Code code, const QString &message, const QString &before = {}) const
    {
        const Said said = run(arguments + QStringList { QStringLiteral("-o"), file(QStringLiteral("x.csv")) }, before);
        EXPECT_EQ(said.code, code) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(said.errors.contains(message)) << said.errors.toStdString();
        EXPECT_EQ(files(), QStringList());
    }

    QTemporaryDir m_folder;
};

QByteArray bytesOf(const QString &name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

/// All parts of a workbook but for those that tell when it was written.
QByteArray partsOf(const QString &workbook)
{
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), { QStringLiteral("-p"), workbook, QStringLiteral("xl/*") });
    EXPECT_TRUE(unzip.waitForFinished(patience));
    return unzip.readAllStandardOutput();
}

/// The clock runs on from the set time: the minute is the same, the second is not.
QByteArray withoutSeconds(const QByteArray &bytes)
{
    static const QRegularExpression stamp(QStringLiteral("(2026-03-15 16:3\\d):\\d\\d"));
    return QString::fromUtf8(bytes).replace(stamp, QStringLiteral("2026-03-15 16:30")).toUtf8();
}

QStringList words(const char16_t *text) { return QString::fromUtf16(text).split(u' '); }

TEST_F(Report, HasTheBytesThatTheWindowGives)
{
    ClientProcess client;
    client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ManCome111") } });
    client.set(QStringLiteral("DBDateTimeEditEh1"), QStringLiteral("2026-03-14 00:00:00"));
    client.set(QStringLiteral("DBDateTimeEditEh2"), QStringLiteral("2026-03-14 23:59:59"));
    client.obey(QStringLiteral("query"));
    const QJsonObject first = client.obey(QStringLiteral("rows"), { { QStringLiteral("count"), 1 } });
    const QJsonArray cells = first[u"rows"][0].toArray();
    ASSERT_EQ(cells.size(), 5);
    client.obey(QStringLiteral("cell"),
        { { QStringLiteral("row"), 0 }, { QStringLiteral("field"), QStringLiteral("scan_man") }, { QStringLiteral("doubleClick"), true } });
    const QString row = QStringLiteral("片区=%1，班次=%2，扫描人=%3").arg(cells[0].toString(), cells[1].toString(), cells[2].toString());

    QStringList arguments { QStringLiteral("扫描员到件统计"), QStringLiteral("--set"), QStringLiteral("扫描网点=北京"),
        QStringLiteral("--set"), QStringLiteral("开始=昨天"), QStringLiteral("--set"), QStringLiteral("结束=昨天"),
        QStringLiteral("--drill"), row };
    const QStringList endings { QStringLiteral("csv"), QStringLiteral("json"), QStringLiteral("txt"), QStringLiteral("html"),
        QStringLiteral("xlsx") };
    for (const QString &ending : endings) {
        client.obey(QStringLiteral("export"), { { QStringLiteral("file"), m_folder.filePath(u"window." + ending) } });
        arguments << QStringLiteral("-o") << file(u"{昨天:yyyyMMdd}." + ending);
    }
    arguments << QStringLiteral("--print") << file(QStringLiteral("list.pdf"));
    EXPECT_EQ(client.quit(), 0);

    const Said said = run(arguments);
    ASSERT_EQ(said.code, rows) << said.errors.toStdString();
    EXPECT_EQ(said.errors, QString());
    ASSERT_EQ(said.log.size(), 1);
    EXPECT_EQ(said.log[0][u"rows"].toInt(), cells[3].toString().toInt());
    EXPECT_EQ(said.log[0][u"files"].toArray().size(), 6);
    for (const QString &ending : endings) {
        const QString made = file(u"20260314." + ending);
        const QString expected = m_folder.filePath(u"window." + ending);
        if (ending == u"xlsx")
            EXPECT_EQ(withoutSeconds(partsOf(made)), withoutSeconds(partsOf(expected)));
        else
            EXPECT_EQ(withoutSeconds(bytesOf(made)), withoutSeconds(bytesOf(expected))) << ending.toStdString();
    }
    EXPECT_TRUE(bytesOf(file(QStringLiteral("list.pdf"))).startsWith("%PDF"));
}

TEST_F(Report, SaysWhatIsWrongWithTheRequest)
{
    expectNone(words(u"扫描员到件统计 --set 扫描网店=北京"), wrong, QStringLiteral("没有条件“扫描网店”，相近的有：扫描网点"));
    expectNone(words(u"扫描员到件统计 --set 扫描网点=北京城"), wrong, QStringLiteral("相近的有：北京、"));
    expectNone(words(u"扫描员到件统计 --set 开始=前天晚上"), wrong, QStringLiteral("“前天晚上”不是时间"));
    expectNone(
        words(u"总部扫描监控 --set 扫描网点=北京"), wrong, QStringLiteral("请写明是哪一个：对比源条件.扫描网点、对比目标条件.扫描网点"));
    expectNone(words(u"扫描员到件 --set 扫描网点=北京"), wrong, QStringLiteral("相近的有：扫描员到件统计"));
    expectNone(words(u"扫描员到件统计 --drill 扫描员=张三"), wrong, QStringLiteral("没有列“扫描员”，相近的有：扫描人"));
    expectNone(words(u"扫描员到件统计 --page 明细"), wrong, QStringLiteral("相近的有：明细数据"));
    expectNone(words(u"扫描员到件统计 -o x.doc"), wrong, QStringLiteral("请以 .xlsx、.csv"));
    expectNone(words(u"扫描员到件统计 --sett 扫描网点=北京"), wrong, QStringLiteral("没有“--sett”这个选项"));
    expectNone({}, wrong, QStringLiteral("请写出窗口"));
}

TEST_F(Report, TellsAnEmptyAnswerFromAFailure)
{
    const QStringList never = words(u"扫描员到件统计 --set 扫描时间范围=2020-01-01");
    expectNone(never, empty, QStringLiteral("没有符合条件的数据"));
    expectNone(never + QStringList(QStringLiteral("--fail-if-empty")), failed, QStringLiteral("没有符合条件的数据"));
    expectNone(words(u"扫描员到件统计 --drill 扫描人=没有这人"), empty, QStringLiteral("没有“扫描人=没有这人”这一行"));
    // What the window refuses with a box.
    expectNone(words(u"扫描员到件统计 --set 开始=2026-01-01"), failed, QStringLiteral("窗口拒绝查询：详细：结束日期不能超过"));
}

TEST_F(Report, LeavesNoFileOnAFullDisk)
{
    const QString full = QStringLiteral("trap '' XFSZ; ulimit -f 4;");
    expectNone(words(u"总部扫描监控"), failed, QStringLiteral("写"), full);
    for (const char *name : { "x.xlsx", "x.json", "x.pdf" }) {
        const Said said = run(words(u"总部扫描监控") + QStringList { QStringLiteral("-o"), file(QString::fromLatin1(name)) }, full);
        EXPECT_EQ(said.code, failed) << name;
        EXPECT_EQ(files(), QStringList()) << name;
    }
    // An older file stays as it is.
    QFile older(file(QStringLiteral("x.csv")));
    ASSERT_TRUE(older.open(QIODevice::WriteOnly) && older.write("older") == 5);
    older.close();
    EXPECT_EQ(run(words(u"总部扫描监控") + QStringList { QStringLiteral("-o"), older.fileName() }, full).code, failed);
    EXPECT_EQ(bytesOf(older.fileName()), "older");
}

TEST_F(Report, SaysWhyAServerGivesNothing)
{
    const QStringList screen = words(u"扫描员到件统计");
    ServerProcess::setBranch({ { "site", "北京朝阳" }, { "screens", "frm_ManSend" } });
    ServerProcess server;
    const QStringList login = ServerProcess::clientOptions({ &server });
    const QString password = login[login.indexOf(QStringLiteral("--password-file")) + 1];
    expectNone(screen + ServerProcess::clientOptions({ &server }, QStringLiteral("分部")), failed,
        QStringLiteral("没有打开窗口“扫描员到件统计”的权限"));
    QStringList stranger = login;
    stranger.replaceInStrings(password, file(QStringLiteral("missing")));
    expectNone(screen + stranger, failed, QStringLiteral("密码文件"));
    QStringList intruder = login;
    intruder.replaceInStrings(QStringLiteral("张三"), QStringLiteral("李四"));
    expectNone(screen + intruder, failed, QStringLiteral("密码"));

    const Said said = run(screen + login
        + QStringList { QStringLiteral("--site"), QStringLiteral("北京"), QStringLiteral("-o"), file(QStringLiteral("y.csv")) });
    EXPECT_EQ(said.code, rows) << said.errors.toStdString();
    EXPECT_TRUE(QFile::remove(file(QStringLiteral("y.csv"))));
    server.kill();
    expectNone(screen + login, failed, QStringLiteral("服务器"));
    expectNone(screen + words(u"--database sqlite:/nowhere/没有.db"), failed, QStringLiteral("没有.db"));
}

/// Told by the database itself, or by the server at the login.
TEST_F(Report, NamesWhatTheDatabaseLacks)
{
    const engine::test::TemporaryDatabase lacking(engine::test::fileText("demo/schema.sql") + "drop table TAB_AREA;");
    const QString url = QString::fromStdString(lacking.url());
    const QStringList screen = words(u"扫描员到件统计");
    const QString missing = QStringLiteral("数据库不完整：没有表 TAB_AREA");
    expectNone(screen + QStringList { QStringLiteral("--database"), url }, failed, missing);
    const ServerProcess server(0, url);
    const QStringList asked
        = screen + ServerProcess::clientOptions({ &server }) + QStringList { QStringLiteral("-o"), file(QStringLiteral("x.csv")) };
    // The server looks while it serves already.
    Said said;
    for (int attempt = 0; attempt < 100 && !said.errors.contains(u"数据库不完整"); ++attempt)
        said = run(asked);
    EXPECT_EQ(said.code, failed);
    EXPECT_TRUE(said.errors.contains(u"数据库“main”没有表 TAB_AREA")) << said.errors.toStdString();
}

TEST_F(Report, MakesThePlanWhateverBecomesOfOneReport)
{
    const QString plan = m_folder.filePath(QStringLiteral("plan.json"));
    QFile text(plan);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write(R"({ "for": "2026-03-14", "reports": [
        { "screen": "扫描员到件统计", "set": { "扫描时间范围": "昨天" }, "to": "out/{昨天}/到件.csv" },
        { "screen": "扫描员到件统计", "set": { "扫描网店": "北京" }, "to": "out/wrong.csv" },
        { "screen": "扫描员发件统计", "set": { "扫描时间范围": "2020-01-01" }, "to": "out/empty.csv" },
        { "screen": "到派对比", "to": ["out/派件.json", "out/派件.xlsx"] },
        { "screen": "本站有发下站未到", "to": "out/派件.json" } ] })");
    text.close();
    const QString log = m_folder.filePath(QStringLiteral("log"));
    const Said said = run({ QStringLiteral("--plan"), plan, QStringLiteral("--log"), log });
    EXPECT_EQ(said.code, wrong) << said.errors.toStdString();
    EXPECT_EQ(said.log.size(), 0);
    QStringList results;
    for (const QByteArray &line : bytesOf(log).trimmed().split('\n'))
        results.append(QJsonDocument::fromJson(line)[u"result"].toString());
    EXPECT_EQ(results, words(u"rows usage empty rows usage"));
    EXPECT_TRUE(QFile::exists(file(QStringLiteral("2026-03-13/到件.csv"))));
    // The screen's own yesterday is that of the plan's day.
    EXPECT_TRUE(partsOf(file(QStringLiteral("派件.xlsx"))).contains("2026-03-13 00:00:00"));
    EXPECT_EQ(files(), QStringList({ QStringLiteral("派件.json"), QStringLiteral("派件.xlsx") }));

    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("{ \"reports\": [\n { \"screen\": \"到派对比\",\n \"two\": \"x.csv\" } ] }");
    text.close();
    EXPECT_TRUE(run({ QStringLiteral("--plan"), plan }).errors.contains(u"第 1 个报表：没有键“two”，相近的有：to"));
}

TEST_F(Report, ListsWhatThereIs)
{
    QProcess process;
    const auto listed = [&](const QStringList &of) {
        process.start(QStringLiteral(KELVARA_BIN "/kelvara-client"),
            QStringList { QStringLiteral("report"), QStringLiteral("--list"), QStringLiteral("--database"),
                QString(u"sqlite:" + ClientProcess::database()), QStringLiteral("--settings"), m_folder.path(), QStringLiteral("--now"),
                ClientProcess::now() }
                + of);
        EXPECT_TRUE(process.waitForFinished(patience));
        EXPECT_EQ(process.exitCode(), 0);
        return QString::fromUtf8(process.readAllStandardOutput());
    };
    EXPECT_TRUE(listed({}).split(u'\n').contains(QStringLiteral("月发件清单")));
    const QString screen = listed({ QStringLiteral("月发件清单") });
    EXPECT_TRUE(screen.contains(u"扫描时间范围.开始=2026-02-01 00:00:00")) << screen.toStdString();
    EXPECT_TRUE(screen.contains(u"扫描网点=北京"));
    EXPECT_TRUE(screen.contains(u"汇总数据："));
    EXPECT_TRUE(screen.contains(u"清单打印(1)"));
}

} // namespace
