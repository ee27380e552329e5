#include "client/options.h"

#include "client/settings_files.h"
#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace client;
using namespace platform;

namespace {

TEST(Options, EachIsReadAndTheRestKeepsItsDefault)
{
    const Options options
        = readOptions(QStringLiteral("--database|sqlite:a b.db|--login-site|上海|--now|2026-03-15 16:30:00|--automation").split(u'|'));
    EXPECT_EQ(options.database, QStringLiteral("sqlite:a b.db"));
    EXPECT_EQ(options.loginSite, QStringLiteral("上海"));
    EXPECT_EQ(options.now.time(), QTime(16, 30));
    EXPECT_TRUE(options.automation);
    EXPECT_FALSE(options.serverNow.isValid());
    EXPECT_EQ(readOptions(QStringLiteral("--server|https://a:1|--compress|--server=b").split(u'|')).servers,
        (QStringList { QStringLiteral("https://a:1"), QStringLiteral("b") }));
    EXPECT_TRUE(readOptions({}).loginSite.isEmpty());
    EXPECT_EQ(readOptions({ QStringLiteral("--database=sqlite:a=b.db") }).database, QStringLiteral("sqlite:a=b.db"));
}

TEST(Options, WhatIsWrongIsNamed)
{
    const std::pair<const char16_t *, const char16_t *> wrong[] = {
        { u"--databse|x", u"--databse" },
        { u"--database", u"--database" },
        { u"--database|--automation", u"--database" },
        { u"--automation=yes", u"--automation" },
        { u"--now|morgen", u"morgen" },
        { u"--server-now=2026-02-30 10:00", u"2026-02-30" },
        { u"file.db", u"file.db" },
        { u"--server", u"--server" },
        { u"--text-size|big", u"big" },
        { u"--theme|blue", u"blue" },
        { u"--config|/nowhere/x.conf", u"x.conf" },
    };
    for (const auto &[arguments, named] : wrong) {
        try {
            readOptions(QString::fromUtf16(arguments).split(u'|'));
            ADD_FAILURE() << QString::fromUtf16(arguments).toStdString();
        } catch (const std::exception &exception) {
            EXPECT_TRUE(exceptionMessage(exception).contains(QString::fromUtf16(named))) << exception.what();
        }
    }
}

class SettingsFiles : public testing::Test {
protected:
    QString write(const QString &name, const QByteArray &text)
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        return path;
    }
    QString errorOf(const QByteArray &text)
    {
        try {
            readOptions({}, { { write(QStringLiteral("有错.conf"), text) }, {}, {} });
            return QStringLiteral("no error");
        } catch (const std::exception &exception) {
            return exceptionMessage(exception);
        }
    }

    QTemporaryDir m_folder;
};

TEST_F(SettingsFiles, LaterOnesOverrideEarlierOnesAndTheCommandLineAll)
{
    SettingsSources sources;
    sources.shared
        = { write(QStringLiteral("a/beside.conf"), "\xEF\xBB\xBFserver = https://a:1, https://b\r\ncompress = yes\ntheme = dark\n"),
              m_folder.filePath(QStringLiteral("none.conf")),
              write(QStringLiteral("b/system.conf"), "# 中心\nserver_certificate = keys/center.crt\ntext_size = 90\nprinter = 一号\n") };
    sources.centre = { { "text_size", "115" }, { "compress", "no" }, { "plugins", "/elsewhere" }, { "of_later_versions", "1" } };
    sources.own = write(QStringLiteral("c/own.conf"), "theme = light\n");
    const Options options = readOptions({ QStringLiteral("--text-size=150") }, sources);
    EXPECT_EQ(options.servers, (QStringList { QStringLiteral("https://a:1"), QStringLiteral("https://b") }));
    EXPECT_EQ(options.serverCertificate, m_folder.filePath(QStringLiteral("b/keys/center.crt"))) << "paths begin at the file";
    EXPECT_FALSE(options.compressed) << "the centre has said no after the shared file's yes";
    EXPECT_EQ(options.offered.textPercent, 115);
    EXPECT_EQ(options.offered.tone, QStringLiteral("light"));
    EXPECT_EQ(options.offered.printer, QStringLiteral("一号"));
    EXPECT_EQ(options.wanted.textPercent, 150);
    EXPECT_EQ(options.pluginDirectory, QString()) << "no server says what is loaded here";

    sources.own = write(QStringLiteral("c/own.conf"), "server = https://own\n");
    EXPECT_EQ(readOptions({}, sources).servers, QStringList(QStringLiteral("https://own")));
    const Options local = readOptions({ QStringLiteral("--database=sqlite:x.db") }, sources);
    EXPECT_TRUE(local.servers.isEmpty()) << "the command line says where statements go";
    EXPECT_EQ(local.database, QStringLiteral("sqlite:x.db"));
    EXPECT_EQ(readOptions({ QStringLiteral("--config"), sources.own }, sources).serverCertificate, QString()) << "no other file is read";
}

TEST_F(SettingsFiles, ErrorsNameFileLineAndKey)
{
    const std::pair<QByteArray, QString> cases[] = {
        { "\nsever = https://a", QStringLiteral("有错.conf 第 2 行：键“sever”不存在") },
        { "server", QStringLiteral("第 1 行：不是“键 = 值”") },
        { "text_size = 500", QStringLiteral("键“text_size”的值不能用") },
        { "compress = ja", QStringLiteral("键“compress”的值“ja”不能用，应是yes 或 no") },
        { "user = a\nuser = b", QStringLiteral("第 2 行：键“user”写了两次") },
        { "automation = yes", QStringLiteral("键“automation”不存在") },
        { "[client]", QStringLiteral("没有小节") },
    };
    for (const auto &[text, message] : cases)
        EXPECT_TRUE(errorOf(text).contains(message)) << errorOf(text).toStdString();
}

TEST_F(SettingsFiles, TheSampleExplainsEveryKeyAndCanBeUsed)
{
    QString sample = settingsSample();
    EXPECT_EQ(errorOf(sample.toUtf8()), QStringLiteral("no error"));
    sample.replace(QRegularExpression(QStringLiteral("^#([a-z])"), QRegularExpression::MultilineOption), QStringLiteral("\\1"));
    EXPECT_EQ(errorOf(sample.toUtf8()), QStringLiteral("no error"));
    const Options options = readOptions({}, { { write(QStringLiteral("sample.conf"), sample.toUtf8()) }, {}, {} });
    EXPECT_EQ(options.servers.size(), 2);
    EXPECT_EQ(options.offered.tone, QStringLiteral("dark"));
}

TEST_F(SettingsFiles, WhatAPersonHasEnteredReplacesItsLineAlone)
{
    qputenv("XDG_CONFIG_HOME", m_folder.path().toUtf8());
    keepOwnSetting(QStringLiteral("server"), QStringLiteral("https://a"));
    const QString file = ownSettingsFile();
    EXPECT_TRUE(file.startsWith(m_folder.path()));
    write(QStringLiteral("kelvara/kelvara-client.conf"), "# 我的\n  server=https://a\nuser = 张三");
    keepOwnSetting(QStringLiteral("server"), QStringLiteral("https://b"));
    keepOwnSetting(QStringLiteral("theme"), QStringLiteral("dark"));
    QFile kept(file);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray("# 我的\nserver = https://b\nuser = 张三\ntheme = dark\n"));
    qunsetenv("XDG_CONFIG_HOME");
}

TEST_F(SettingsFiles, LayoutsGoWhereTheyCanBeWrittenAndTakeTheOldOnesAlong)
{
    const QString program = m_folder.filePath(QStringLiteral("lib/kelvara"));
    const QString person = m_folder.filePath(QStringLiteral("home/kelvara"));
    write(QStringLiteral("lib/kelvara/WindowsIni/Kelvara1.ini"), "old layout");
    write(QStringLiteral("lib/kelvara/Conditions/甲@北京/x.json"), "old conditions");
    EXPECT_EQ(settingsDirectoryOf(program, person), program) << "a program in a folder of the person's own";

    QDir().mkpath(m_folder.filePath(QStringLiteral("bin")));
    QFile::link(QStringLiteral("../lib/kelvara/kelvara-client"), m_folder.filePath(QStringLiteral("bin/kelvara-client")));
    EXPECT_EQ(settingsDirectoryOf(program, person), person) << "a program that is installed, even for who may write there";
    EXPECT_TRUE(QFile::exists(person + u"/Conditions/甲@北京/x.json"));
    write(QStringLiteral("home/kelvara/WindowsIni/Kelvara1.ini"), "new layout");
    EXPECT_EQ(settingsDirectoryOf(program, person), person);
    QFile layout(person + u"/WindowsIni/Kelvara1.ini");
    ASSERT_TRUE(layout.open(QIODevice::ReadOnly));
    EXPECT_EQ(layout.readAll(), QByteArray("new layout")) << "what the person has done since stays";
}

} // namespace
