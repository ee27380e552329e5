#include "client/options.h"

#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

namespace {

QDateTime time(const QString &value)
{
    try {
        return textToDateTime(value);
    } catch (const Exception &exception) {
        throw Exception(exception.message() + QStringLiteral("请写作 \"yyyy-mm-dd hh:mm:ss\"。"));
    }
}

struct OptionRow {
    QStringView name;
    QStringView argument; ///< empty for a switch
    QStringView help;
    void (*take)(Options &options, const QString &value);
};

const OptionRow rows[] = {
    { u"--database", u"地址", u"数据库，例如 sqlite:parcels.db", [](Options &options, const QString &value) { options.database = value; } },
    { u"--server", u"地址", u"应用服务器，例如 https://center:8866；可以多次给出，连不上时用下一个",
        [](Options &options, const QString &value) { options.servers.append(value); } },
    { u"--second-server", u"地址", u"第二个连接的应用服务器，默认与 --server 相同",
        [](Options &options, const QString &value) { options.secondServers.append(value); } },
    { u"--server-certificate", u"文件", u"除系统的证书外，也信任这个 PEM 文件中的证书",
        [](Options &options, const QString &value) { options.serverCertificate = value; } },
    { u"--compress", u"", u"请服务器压缩数据，用于慢速线路", [](Options &options, const QString &) { options.compressed = true; } },
    { u"--password-file", u"文件", u"登录密码所在的文件；没有时用环境变量 KELVARA_PASSWORD，再没有就显示登录窗口",
        [](Options &options, const QString &value) { options.passwordFile = value; } },
    { u"--user", u"姓名", u"登录的用户，默认为网点的第一位员工", [](Options &options, const QString &value) { options.user = value; } },
    { u"--login-site", u"网点", u"登录的网点，默认 北京", [](Options &options, const QString &value) { options.loginSite = value; } },
    { u"--now", u"时间", u"客户端的时钟从这个时间走起，写作 \"yyyy-mm-dd hh:mm:ss\"",
        [](Options &options, const QString &value) { options.now = time(value); } },
    { u"--server-now", u"时间", u"服务器的时钟从这个时间走起；默认与客户端相同",
        [](Options &options, const QString &value) { options.serverNow = time(value); } },
    { u"--plugins", u"目录", u"插件 Kelvara1 所在的目录，默认为程序目录",
        [](Options &options, const QString &value) { options.pluginDirectory = value; } },
    { u"--settings", u"目录", u"保存设置和表格布局的目录，默认为程序目录",
        [](Options &options, const QString &value) { options.settingsDirectory = value; } },
    { u"--automation", u"", u"从标准输入逐行读取 JSON 命令，在标准输出逐行应答",
        [](Options &options, const QString &) { options.automation = true; } },
    { u"--help", u"", u"显示本说明", [](Options &options, const QString &) { options.help = true; } },
};

const OptionRow &known(const QString &name)
{
    for (const OptionRow &row : rows) {
        if (row.name == name)
            return row;
    }
    throw Exception(QStringLiteral("不认识的选项“%1”。用 --help 查看全部选项。").arg(name));
}

} // namespace

Options readOptions(const QStringList &arguments)
{
    Options options;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const QString name = arguments[index].section(u'=', 0, 0);
        const OptionRow &row = known(name);
        const bool joined = name.size() < arguments[index].size();
        QString value = arguments[index].sliced(name.size() + (joined ? 1 : 0));
        if (row.argument.isEmpty() && joined)
            throw Exception(QStringLiteral("选项“%1”不带参数。").arg(name));
        if (!row.argument.isEmpty() && !joined) {
            if (index + 1 == arguments.size() || arguments[index + 1].startsWith(u"--"))
                throw Exception(QStringLiteral("选项“%1”后面缺少%2。").arg(name, row.argument));
            value = arguments[++index];
        }
        row.take(options, value);
    }
    return options;
}

QString optionsHelp()
{
    QString help = QStringLiteral("用法：kelvara-client --database sqlite:文件 [选项]\n\n快递网络查询与报表系统的客户端。\n\n选项：\n");
    for (const OptionRow &row : rows)
        help += QStringLiteral("  %1%2\n      %3\n")
                    .arg(row.name, row.argument.isEmpty() ? QString() : QString(u' ' + row.argument), row.help);
    return help;
}
