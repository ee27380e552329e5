#include "client/options.h"

#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

namespace {

struct OptionRow {
    const char *name;
    const char *argument; ///< "" for a switch
    const char *help;
    void (*take)(Options &options, const QString &value);
};

const OptionRow rows[] = {
    { "--database", "URL", "数据库，例如 sqlite:parcels.db", [](Options &options, const QString &value) { options.database = value; } },
    { "--server", "URL", "应用服务器的地址（本版本尚不能连接服务器）",
        [](Options &, const QString &) { throw Exception(QStringLiteral("本版本尚不能连接应用服务器，请用 --database 指定数据库。")); } },
    { "--user", "姓名", "登录的用户", [](Options &options, const QString &value) { options.user = value; } },
    { "--login-site", "网点", "登录的网点，默认 北京", [](Options &options, const QString &value) { options.loginSite = value; } },
    { "--now", "\"yyyy-mm-dd hh:mm:ss\"", "客户端的当前时间",
        [](Options &options, const QString &value) { options.now = textToDateTime(value); } },
    { "--server-now", "\"yyyy-mm-dd hh:mm:ss\"", "服务器的当前时间",
        [](Options &options, const QString &value) { options.serverNow = textToDateTime(value); } },
    { "--plugins", "目录", "插件所在的目录", [](Options &options, const QString &value) { options.pluginDirectory = value; } },
    { "--settings", "目录", "保存设置和表格布局的目录", [](Options &options, const QString &value) { options.settingsDirectory = value; } },
    { "--automation", "", "从标准输入逐行读取 JSON 命令（见 docs/automation.md）",
        [](Options &options, const QString &) { options.automation = true; } },
};

} // namespace

Options readOptions(const QStringList &arguments)
{
    Options options;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const OptionRow *known = nullptr;
        for (const OptionRow &row : rows)
            if (arguments[index] == QLatin1StringView(row.name))
                known = &row;
        if (!known)
            throw Exception(QStringLiteral("不认识的选项“%1”。用 --help 查看全部选项。").arg(arguments[index]));
        QString value;
        if (*known->argument) {
            if (index + 1 == arguments.size())
                throw Exception(QStringLiteral("选项“%1”后面缺少%2。").arg(arguments[index], QString::fromUtf8(known->argument)));
            value = arguments[++index];
        }
        known->take(options, value);
    }
    return options;
}

QString optionsHelp()
{
    QString help = QStringLiteral("用法：kelvara-client --database sqlite:文件 [选项]\n\n");
    for (const OptionRow &row : rows)
        help += QStringLiteral("  %1 %2\n      %3\n")
                    .arg(QLatin1StringView(row.name), QString::fromUtf8(row.argument), QString::fromUtf8(row.help));
    return help + QStringLiteral("  --help\n      显示这些说明\n");
}
