#include "client/options.h"

#include "client/settings_files.h"
#include "options/centre_settings.h"
#include "options/command_line.h"
#include "options/settings_reader.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <stdexcept>
#include <utility>
#include <vector>

using namespace platform;

namespace client {
namespace {

using Take = std::function<void(const std::string &)>;

QDateTime time(const QString &value)
{
    try {
        return textToDateTime(value);
    } catch (const Exception &exception) {
        throw Exception(exception.message() + QStringLiteral("请写作 \"yyyy-mm-dd hh:mm:ss\"。"));
    }
}

int percent(const std::string &value)
{
    bool isNumber = false;
    const int percent = QString::fromStdString(value).toInt(&isNumber);
    if (!isNumber || percent < 75 || percent > 200)
        throw std::invalid_argument("字体大小应是从 75 到 200 的整数，如 115；不能是“" + value + "”。");
    return percent;
}

QString tone(const std::string &value)
{
    if (value != "light" && value != "dark" && value != "system")
        throw std::invalid_argument("颜色应是 light（浅色）、dark（深色）或 system（跟随系统），不能是“" + value + "”。");
    return QString::fromStdString(value);
}

Take text(QString &member)
{
    return [&member](const std::string &value) { member = QString::fromStdString(value); };
}

/// A relative one begins in `folder`; an empty folder is the one at work.
QString pathIn(const QString &folder, const QString &path) { return folder.isEmpty() ? path : QDir(folder).absoluteFilePath(path); }

Take path(QString &member, const QString &folder)
{
    return [&member, folder](const std::string &value) { member = pathIn(folder, QString::fromStdString(value)); };
}

Take databaseAddress(QString &member, const QString &folder)
{
    return [&member, folder](const std::string &value) {
        static const QString file = QStringLiteral("sqlite:");
        const QString address = QString::fromStdString(value);
        member = address.startsWith(file) ? file + pathIn(folder, address.mid(file.size())) : address;
    };
}

/// Those of one source, separated by commas or given several times, take the place of those from before.
Take list(QStringList &member)
{
    return [&member, isFirst = true](const std::string &value) mutable {
        if (std::exchange(isFirst, false))
            member.clear();
        for (const std::string &item : options::listOf(value))
            member.append(QString::fromStdString(item));
    };
}

Take moment(QDateTime &member)
{
    return [&member](const std::string &value) { member = time(QString::fromStdString(value)); };
}

Take on(bool &member)
{
    return [&member](const std::string &value) { member = value != "no"; };
}

/// Every option, and with an example those that files of settings may say. Relative paths begin in `folder`.
std::vector<options::Option> optionsOf(Options &options, Preferences &preferences, const QString &folder = {})
{
    return {
        { "--server", "地址", "应用服务器，例如 https://center:8866；可以多次给出，或以逗号分隔，连不上时用下一个", list(options.servers),
            "https://center:8866, https://center2:8866" },
        { "--second-server", "地址", "第二个连接的应用服务器，默认与 --server 相同", list(options.secondServers), "https://center3:8866" },
        { "--server-certificate", "文件", "除系统的证书外，也信任这个 PEM 文件中的证书", path(options.serverCertificate, folder),
            "center.crt" },
        { "--compress", "", "请服务器压缩数据，用于慢速线路", on(options.compressed), "yes" },
        { "--database", "地址", "不经过服务器，直接打开的数据库，例如 sqlite:parcels.db", databaseAddress(options.database, folder),
            "sqlite:parcels.db" },
        { "--user", "姓名", "登录的用户，默认为上次登录的；没有服务器时默认为网点的第一位员工", text(options.user), "张三" },
        { "--password-file", "文件", "登录密码所在的文件；没有时用环境变量 KELVARA_PASSWORD，再没有就显示登录窗口",
            path(options.passwordFile, folder), "password" },
        { "--login-site", "网点", "登录的网点；帐户有自己的网点时就在那里登录，否则默认在登录窗口中选择，没有服务器时默认 北京",
            text(options.loginSite), "上海" },
        { "--text-size", "百分比", "字体大小，从 75 到 200，标准为 100",
            [&](const std::string &value) { preferences.textPercent = percent(value); }, "115" },
        { "--theme", "颜色", "颜色：light 浅色，dark 深色，system 跟随系统",
            [&](const std::string &value) { preferences.tone = tone(value); }, "dark" },
        { "--printer", "名称", "打印机，默认为系统的；每种清单记住上次用过的打印机", text(preferences.printer), "Laser" },
        { "--plugins", "目录", "插件 Kelvara1 所在的目录，默认为程序目录", path(options.pluginDirectory, folder), "plugins" },
        { "--settings", "目录", "保存表格布局、查询条件和窗口设置的目录，默认为程序目录，那里不能写入时为个人的设置目录",
            path(options.settingsDirectory, folder), "settings" },
        { "--config", "文件", "只读取这个设置文件，不读取平常的设置文件", text(options.settingsFile) },
        { "--print-settings", "", "显示设置文件的样本：每个键的说明，以及读取哪些文件", on(options.printSettings) },
        { "--now", "时间", "客户端的时钟从这个时间走起，写作 \"yyyy-mm-dd hh:mm:ss\"", moment(options.now) },
        { "--server-now", "时间", "服务器的时钟从这个时间走起；默认与客户端相同", moment(options.serverNow) },
        { "--automation", "", "从标准输入逐行读取 JSON 命令，在标准输出逐行应答", on(options.automation) },
        { "--strict", "", "与 --automation 同用：第一个失败的命令或被拒绝的查询使程序以 1 结束", on(options.strict) },
        { "--write-guide", "目录", "把使用手册写成 html 和 pdf 放在这个目录，然后结束", text(options.guideFolder) },
        { "--diagnose", "文件", "把诊断信息（版本、设置、最近的错误和查询时间，没有密码和单号）写到文件，然后结束",
            text(options.diagnoseFile) },
        { "--version", "", "显示版本", on(options.version) },
        { "--help", "", "显示本说明", on(options.help) },
    };
}

/// A source that says where statements go has the last word on it.
template <class Read>
void readLayer(Options &options, const Read &read)
{
    const QString database = std::exchange(options.database, {});
    const QStringList servers = std::exchange(options.servers, {});
    read();
    if (options.database.isEmpty() && options.servers.isEmpty()) {
        options.database = database;
        options.servers = servers;
    }
}

void readText(const QByteArray &text, const QString &name, const QString &folder, Options &options)
{
    readLayer(options, [&] { options::readSettings(text.toStdString(), name.toStdString(), optionsOf(options, options.offered, folder)); });
}

void readFile(const QString &fileName, Options &options)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("设置文件“%1”打不开：").arg(QDir::toNativeSeparators(fileName)) + file.errorString() + u"。");
    readText(file.readAll(), QDir::toNativeSeparators(fileName), QFileInfo(fileName).absolutePath(), options);
}

void readFileIfThere(const QString &fileName, Options &options)
{
    if (QFile::exists(fileName))
        readFile(fileName, options);
}

void readCentre(const std::map<std::string, std::string> &settings, Options &options)
{
    std::string text;
    for (const auto &[key, value] : settings)
        if (options::isCentreSetting(key))
            text += key + " = " + value + '\n';
    readText(QByteArray::fromStdString(text), QStringLiteral("（由中心下发）"), {}, options);
}

/// The same grammar, but what it takes comes to nothing.
CommandGrammar ignoring(CommandGrammar command)
{
    for (options::Option &option : command.options)
        option.take = [](const std::string &) {};
    if (command.bare)
        command.bare = [](const std::string &) {};
    return command;
}

void readArguments(const QStringList &arguments, const CommandGrammar &command, Options &options)
{
    std::vector<std::string> given;
    for (const QString &argument : arguments)
        given.push_back(argument.toStdString());
    std::vector<options::Option> table = optionsOf(options, options.wanted);
    table.insert(table.end(), command.options.begin(), command.options.end());
    readLayer(options, [&] { options::read(given, table, command.bare); });
}

} // namespace

Options readOptions(const QStringList &arguments, const SettingsSources &sources, const CommandGrammar &command)
{
    Options given;
    readArguments(arguments, ignoring(command), given);
    if (given.help || given.version || given.printSettings)
        return given;
    const bool usesUsualFiles = given.settingsFile.isEmpty();
    Options options;
    for (const QString &file : usesUsualFiles ? sources.shared : QStringList())
        readFileIfThere(file, options);
    readCentre(sources.centre, options);
    if (usesUsualFiles)
        readFileIfThere(sources.own, options);
    else
        readFile(given.settingsFile, options);
    readArguments(arguments, command, options);
    return options;
}

QString optionsHelp()
{
    Options unused;
    return QStringLiteral("用法：kelvara-client [选项]\n      kelvara-client report "
                          "--help　不用人做报表\n\n快递网络查询与报表系统的客户端。\n\n选项：\n")
        + QString::fromStdString(options::help(optionsOf(unused, unused.wanted)))
        + QStringLiteral("\n设置文件可以说的选项见 --print-settings；命令行的选项优先。\n");
}

QString settingsSample()
{
    Options unused;
    return QStringLiteral("# kelvara-client 的设置文件。格式为“键 = 值”，# 开头的行是注释。需要一个键时去掉它前面的 # 并改好值。\n"
                          "# 依次读取这些目录中的 kelvara-client.conf，后面的优先；命令行的选项又优先于文件：\n"
                          "#   程序所在的目录\n"
                          "#   全机的设置目录：/etc/kelvara（Windows：%PROGRAMDATA%\\kelvara）\n"
                          "#   个人的设置目录：~/.config/kelvara（Windows：%APPDATA%\\kelvara）\n"
                          "# 相对路径从文件所在的目录算起。\n")
        + QString::fromStdString(options::settingsSample(optionsOf(unused, unused.offered)));
}

} // namespace client
