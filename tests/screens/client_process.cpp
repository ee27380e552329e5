#include "tests/screens/client_process.h"

#include "engine/pool/open_engine.h"
#include "tests/screens/screen_test.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>

namespace {

constexpr int patience = 60'000; // milliseconds; only a hanging client takes as long

/// The programs of this build, or of the one that the environment names.
QString program(const char *name)
{
    return qEnvironmentVariable("KELVARA_BIN", QStringLiteral(KELVARA_BIN)) + u'/' + QString::fromLatin1(name);
}

} // namespace

QString ClientProcess::database()
{
    static const QTemporaryDir directory;
    static const QString path = [] {
        const QString file = directory.filePath(QStringLiteral("演示.db"));
        makeDemo(file);
        return file;
    }();
    return path;
}

void ClientProcess::makeDemo(const QString &place)
{
    const int result = QProcess::execute(program("kelvara-demo"),
        { QStringLiteral("--waybills"), QStringLiteral("20000"), QStringLiteral("--as-of"), now(), QStringLiteral("--seed"),
            QStringLiteral("7"), place });
    EXPECT_EQ(result, 0);
}

ClientProcess::ClientProcess(const QStringList &options, const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // What stands in this computer's files of settings is nothing to the test.
    const QString noSettings = m_settings.filePath(QStringLiteral("kelvara-client.conf"));
    EXPECT_TRUE(QFile(noSettings).open(QIODevice::WriteOnly));
    QStringList arguments { QStringLiteral("--automation"), QStringLiteral("--config"), noSettings, QStringLiteral("--settings"),
        m_settings.path(), QStringLiteral("--now"), now() };
    if (!options.contains(QStringLiteral("--database")) && !options.contains(QStringLiteral("--server")))
        arguments << QStringLiteral("--database") << QString(u"sqlite:" + database());
    m_process.start(program("kelvara-client"), arguments + options);
    EXPECT_TRUE(m_process.waitForStarted(patience));
}

ClientProcess::~ClientProcess()
{
    if (m_process.state() != QProcess::NotRunning)
        quit();
    if (m_process.state() != QProcess::NotRunning)
        m_process.kill();
}

QJsonObject ClientProcess::ask(QJsonObject command)
{
    m_process.write(QJsonDocument(command).toJson(QJsonDocument::Compact) + '\n');
    while (!m_process.canReadLine() && m_process.state() != QProcess::NotRunning && m_process.waitForReadyRead(patience)) { }
    return QJsonDocument::fromJson(m_process.readLine()).object();
}

QJsonObject ClientProcess::obey(const QJsonObject &command)
{
    const QJsonObject reply = ask(command);
    EXPECT_TRUE(reply[u"ok"].toBool()) << QJsonDocument(command).toJson().constData() << QJsonDocument(reply).toJson().constData();
    return reply;
}

QJsonObject ClientProcess::obey(const QString &what, const QJsonObject &arguments)
{
    QJsonObject command = arguments;
    command[u"do"] = what;
    return obey(command);
}

QJsonArray ClientProcess::events(const QString &kind)
{
    QJsonArray wanted;
    for (const QJsonValue &event : events())
        if (event[u"event"].toString() == kind)
            wanted.append(event);
    return wanted;
}

QString ClientProcess::textOf(const QString &control)
{
    return obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[u"text"].toString();
}

void ClientProcess::set(const QString &control, const QString &text)
{
    obey(QStringLiteral("set"), { { QStringLiteral("control"), control }, { QStringLiteral("text"), text } });
}

int ClientProcess::quit()
{
    ask({ { QStringLiteral("do"), QStringLiteral("quit") } });
    m_process.closeWriteChannel();
    const bool ended = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
    return ended ? m_process.exitCode() : -1;
}

QString answerOf(const QString &sql)
{
    static const auto database = engine::openEngine("sqlite:" + ClientProcess::database().toStdString());
    std::string answer;
    database->query(sql.toStdString(), {})->appendText(0, 0, answer);
    return QString::fromStdString(answer);
}
