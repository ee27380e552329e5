#include "tests/screens/server_process.h"

#include "server/tls/certificate.h"
#include "server/users/password.h"
#include "server/users/user_file.h"
#include "tests/screens/client_process.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

namespace {

constexpr int patience = 60'000; // milliseconds
const QString password = QStringLiteral("演示密码");

void writeFile(const QString &name, const QByteArray &text)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

/// The files that the servers share.
QString sharedFile(const QString &name)
{
    static const QTemporaryDir directory;
    static const bool made = [] {
        const auto path
            = [](const char *file) { return std::filesystem::path(directory.filePath(QString::fromLatin1(file)).toStdU16String()); };
        server::makeLocalCertificate(path("server.crt"), path("server.key"));
        const server::Account account { .hash = server::hashPassword(password.toStdString()) };
        server::writeUsers(path("users"), { { "张三", account }, { "分部", account } });
        writeFile(directory.filePath(QStringLiteral("token.key")), QByteArray(64, 'k'));
        writeFile(directory.filePath(QStringLiteral("password")), password.toUtf8() + '\n');
        return true;
    }();
    EXPECT_TRUE(made);
    return directory.filePath(name);
}

} // namespace

ServerProcess::ServerProcess(int port, const QString &url, int rows)
{
    const QString shown = url.isEmpty() ? QString(u"sqlite:" + ClientProcess::database()) : url;
    const QString name = sharedFile(QStringLiteral("server-%1.conf").arg(reinterpret_cast<quintptr>(this)));
    writeFile(name,
        QStringLiteral(
            "listen = 127.0.0.1:%1\ncertificate = server.crt\nprivate_key = server.key\nusers = users\ntoken_key_file = token.key\n"
            "drain_seconds = 0\n[database main]\nurl = %2\nrows = %3\n")
            .arg(port)
            .arg(shown)
            .arg(rows)
            .toUtf8());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(QStringLiteral(KELVARA_BIN "/kelvara-server"), { QStringLiteral("--config"), name });
    static const QRegularExpression listening(QStringLiteral("127\\.0\\.0\\.1:(\\d+)"));
    QString said;
    while (m_port == 0 && m_process.waitForReadyRead(patience)) {
        said += QString::fromUtf8(m_process.readAll());
        m_port = listening.match(said).captured(1).toInt();
    }
    EXPECT_NE(m_port, 0) << said.toStdString();
}

ServerProcess::~ServerProcess() { kill(); }

void ServerProcess::setBranch(const std::vector<std::pair<std::string, std::string>> &fields)
{
    const std::filesystem::path users = sharedFile(QStringLiteral("users")).toStdU16String();
    server::changeUsers(users, server::MissingFile::IsAFault, [&](server::Users &known) {
        server::Account account { .hash = known.at("分部").hash };
        for (const auto &[field, text] : fields)
            server::setAccountField(account, field, text);
        known["分部"] = account;
    });
}

QStringList ServerProcess::clientOptions(const QList<const ServerProcess *> &servers, const QString &user)
{
    QStringList options { QStringLiteral("--user"), user, QStringLiteral("--password-file"), sharedFile(QStringLiteral("password")),
        QStringLiteral("--server-certificate"), sharedFile(QStringLiteral("server.crt")) };
    for (const ServerProcess *server : servers)
        options << QStringLiteral("--server") << server->address();
    return options;
}

void ServerProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

void ServerProcess::terminate()
{
    m_process.terminate();
    m_process.waitForFinished(patience);
}
