#include "client/options.h"

#include "options/command_line.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

#include <vector>

using namespace platform;

namespace client {
namespace {

QDateTime time(const QString &value)
{
    try {
        return textToDateTime(value);
    } catch (const Exception &exception) {
        throw Exception(exception.message() + QStringLiteral("请写作 \"yyyy-mm-dd hh:mm:ss\"。"));
    }
}

std::vector<options::Option> optionsOf(Options &options)
{
    const auto text = [](QString &member) { return [&member](const std::string &value) { member = QString::fromStdString(value); }; };
    const auto list
        = [](QStringList &member) { return [&member](const std::string &value) { member.append(QString::fromStdString(value)); }; };
    const auto moment
        = [](QDateTime &member) { return [&member](const std::string &value) { member = time(QString::fromStdString(value)); }; };
    const auto on = [](bool &member) { return [&member](const std::string &) { member = true; }; };
    return {
        { "--database", "地址", "数据库，例如 sqlite:parcels.db", text(options.database) },
        { "--server", "地址", "应用服务器，例如 https://center:8866；可以多次给出，连不上时用下一个", list(options.servers) },
        { "--second-server", "地址", "第二个连接的应用服务器，默认与 --server 相同", list(options.secondServers) },
        { "--server-certificate", "文件", "除系统的证书外，也信任这个 PEM 文件中的证书", text(options.serverCertificate) },
        { "--compress", "", "请服务器压缩数据，用于慢速线路", on(options.compressed) },
        { "--password-file", "文件", "登录密码所在的文件；没有时用环境变量 KELVARA_PASSWORD，再没有就显示登录窗口",
            text(options.passwordFile) },
        { "--user", "姓名", "登录的用户，默认为网点的第一位员工", text(options.user) },
        { "--login-site", "网点", "登录的网点，默认 北京；帐户有自己的网点时就在那里登录", text(options.loginSite) },
        { "--now", "时间", "客户端的时钟从这个时间走起，写作 \"yyyy-mm-dd hh:mm:ss\"", moment(options.now) },
        { "--server-now", "时间", "服务器的时钟从这个时间走起；默认与客户端相同", moment(options.serverNow) },
        { "--plugins", "目录", "插件 Kelvara1 所在的目录，默认为程序目录", text(options.pluginDirectory) },
        { "--settings", "目录", "保存设置和表格布局的目录，默认为程序目录", text(options.settingsDirectory) },
        { "--automation", "", "从标准输入逐行读取 JSON 命令，在标准输出逐行应答", on(options.automation) },
        { "--strict", "", "与 --automation 同用：第一个失败的命令或被拒绝的查询使程序以 1 结束", on(options.strict) },
        { "--write-guide", "目录", "把使用手册写成 html 和 pdf 放在这个目录，然后结束", text(options.guideFolder) },
        { "--version", "", "显示版本", on(options.version) },
        { "--help", "", "显示本说明", on(options.help) },
    };
}

} // namespace

Options readOptions(const QStringList &arguments)
{
    std::vector<std::string> given;
    for (const QString &argument : arguments)
        given.push_back(argument.toStdString());
    Options options;
    options::read(given, optionsOf(options));
    return options;
}

QString optionsHelp()
{
    Options unused;
    return QStringLiteral("用法：kelvara-client --database sqlite:文件 [选项]\n\n快递网络查询与报表系统的客户端。\n\n选项：\n")
        + QString::fromStdString(options::help(optionsOf(unused)));
}

} // namespace client
