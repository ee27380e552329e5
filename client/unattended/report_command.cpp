#include "client/unattended/report_command.h"

#include "client/connections.h"
#include "client/login.h"
#include "client/settings_files.h"
#include "client/unattended/caption.h"
#include "client/unattended/report_log.h"
#include "client/unattended/report_plan.h"
#include "client/unattended/report_runner.h"
#include "options/command_line.h"
#include "platform/toolkit/application.h"

#include <cstdio>
#include <memory>
#include <vector>

using namespace platform;

namespace client {
namespace {

std::pair<QString, QString> conditionOf(const QString &given)
{
    const qsizetype equals = given.indexOf(u'=');
    if (equals < 1)
        throw WrongRequest(QStringLiteral("--set 后面应是 条件=值，不能是“%1”。").arg(given));
    return { given.left(equals), given.mid(equals + 1) };
}

/// What the options say before it is put together.
struct Given {
    ReportJob job;
    QString plan;
    QString log;
    bool list = false;
};

std::vector<options::Option> optionsOf(Given &given)
{
    const auto text = [](QString &member) { return [&member](const std::string &value) { member = QString::fromStdString(value); }; };
    const auto list
        = [](QStringList &member) { return [&member](const std::string &value) { member.append(QString::fromStdString(value)); }; };
    const auto on = [](bool &member) { return [&member](const std::string &) { member = true; }; };
    return {
        { "--list", "", "不做报表，列出可以打开的窗口；写了窗口时列出它的条件、可以写的值、结果页和列", on(given.list) },
        { "--set", "条件=值", "设置一个条件，可以多次给出，按次序设置；时间可以写 昨天、上月 等；“扫描时间范围=昨天”设置两端",
            [&given](const std::string &value) { given.job.conditions.append(conditionOf(QString::fromStdString(value))); } },
        { "--page", "结果页", "要哪一页结果，默认为查询后显示的一页", text(given.job.page) },
        { "--drill", "列=值", "打开这一行的明细并导出它；多个列以逗号分开；再次给出时在明细中继续打开", list(given.job.drills) },
        { "--drill-column", "列", "双击行中的哪一列，默认为 --drill 最后写的列", text(given.job.drillColumn) },
        { "-o", "文件", "写到 .xlsx .csv .txt .json .html 或 .pdf 文件，可以多次给出；文件名中 {昨天}、{上月:yyyyMM} 换成日期",
            list(given.job.files) },
        { "--print", "文件.pdf", "把打印的页写到文件", list(given.job.files) },
        { "--print-button", "按钮", "打印时按窗口中的这个打印按钮", text(given.job.printButton) },
        { "--encoding", "编码", ".csv 和 .txt 的编码：UTF-8（默认）或 GB18030", text(given.job.encoding) },
        { "--for", "日期", "“昨天”等从这一天算起，默认为今天", text(given.job.day) },
        { "--site", "网点", "在哪个网点登录", text(given.job.site) },
        { "--fail-if-empty", "", "没有数据时以 1（失败）结束，而不是 3", on(given.job.failIfEmpty) },
        { "--plan", "文件", "按 JSON 文件做多个报表，见 docs/reports-at-night.md", text(given.plan) },
        { "--log", "文件", "每个报表的结果一行 JSON，加在这个文件的末尾；默认写到标准输出", text(given.log) },
    };
}

std::shared_ptr<Connections> connect(const Options &options)
{
    if (options.servers.isEmpty() == options.database.isEmpty())
        throw WrongRequest(
            QStringLiteral("请用 --server https://主机:端口 或 --database sqlite:文件 之一说明从哪里取数据，也可以写在设置文件中。"));
    if (options.servers.isEmpty())
        return Connections::openDatabase(options);
    const auto password = givenPassword(options);
    if (!password)
        throw Exception(QStringLiteral("登录服务器需要密码，请用 --password-file 或环境变量 KELVARA_PASSWORD 给出。"));
    std::shared_ptr<Connections> connections = Connections::prepareServers(options);
    connections->login(options.user, *password);
    if (connections->account()->mustChangePassword)
        throw Exception(QStringLiteral("这个帐户首次登录须先修改密码，请在窗口中登录一次。"));
    return connections;
}

int list(const ReportCommand &command)
try {
    ReportRunner runner(command.options, connect(command.options));
    const QString text = command.screen.isEmpty() ? runner.listScreens() : runner.listScreen(command.screen);
    std::fputs(text.toUtf8().constData(), stdout);
    return 0;
} catch (const WrongRequest &wrong) {
    std::fprintf(stderr, "%s\n", wrong.what());
    return int(ReportResult::Wrong);
} catch (const std::exception &exception) {
    std::fprintf(stderr, "%s\n", exceptionMessage(exception).toUtf8().constData());
    return int(ReportResult::Failed);
}

} // namespace

ReportCommand readReportCommand(const QStringList &arguments)
{
    ReportCommand command;
    Given given;
    const auto takeScreen = [&](const std::string &word) {
        if (!command.screen.isEmpty())
            throw WrongRequest(QStringLiteral("只能写一个窗口，“%1”是多余的；条件请写 --set 条件=值。").arg(QString::fromStdString(word)));
        command.screen = QString::fromStdString(word);
    };
    command.options = readOptions(arguments, usualSettings(), { optionsOf(given), takeScreen });
    command.options.automation = true; // nobody answers boxes, and no window keeps its place
    command.help = command.options.help;
    command.log = given.log;
    command.list = given.list;
    if (!given.job.site.isEmpty())
        command.options.loginSite = given.job.site;
    if (command.help || command.list)
        return command;
    if (command.screen.isEmpty() == given.plan.isEmpty())
        throw WrongRequest(QStringLiteral("请写出窗口，如 kelvara-client report 扫描员到件统计 -o 到件.xlsx，或用 --plan 给出计划文件。"));
    if (!given.plan.isEmpty()) {
        command.jobs = readPlan(given.plan, given.job.day);
        return command;
    }
    given.job.screen = command.screen;
    command.jobs.append(given.job);
    return command;
}

QString reportHelp()
{
    Given unused;
    return QStringLiteral("用法：\n"
                          "  kelvara-client report 窗口 [--set 条件=值 …] [--drill 列=值] -o 文件 [登录选项]\n"
                          "  kelvara-client report --plan 计划.json [登录选项]\n"
                          "  kelvara-client report --list [窗口] [登录选项]\n\n"
                          "不用人也不用显示器，做出与窗口中导出的一样的文件。登录等其余选项与 kelvara-client --help 中的相同。\n\n选项：\n")
        + QString::fromStdString(options::help(optionsOf(unused)))
        + QStringLiteral("\n结束代码：0 有数据，文件已写好；3 没有数据，没有写文件；1 失败；2 "
                         "命令或计划写错了。多个报表时是其中最坏的（1、2、3、0）。\n");
}

int runReports(const ReportCommand &command)
{
    if (command.list)
        return list(command);
    ReportLog log(command.log);
    ReportResult worst = ReportResult::Rows;
    const auto tell = [&](const ReportJob &job, const ReportOutcome &outcome) {
        worst = worse(worst, outcome.result);
        if (!log.add(job, outcome))
            worst = worse(worst, ReportResult::Failed);
    };
    try {
        const std::shared_ptr<Connections> connections = connect(command.options);
        {
            ReportRunner runner(command.options, connections);
            for (const ReportJob &job : command.jobs)
                tell(job, runner.run(job));
        }
        connections->logout();
    } catch (const std::exception &exception) {
        const bool isWrong = dynamic_cast<const WrongRequest *>(&exception);
        for (const ReportJob &job : command.jobs)
            tell(job, { .result = isWrong ? ReportResult::Wrong : ReportResult::Failed, .message = exceptionMessage(exception) });
    }
    return int(worst);
}

} // namespace client
