#include "client/connections.h"

#include "client/embedded_channel.h"
#include "client/options.h"
#include "client/server_channel.h"
#include "engine/pool/open_engine.h"
#include "platform/toolkit/long_work.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QSslCertificate>
#include <QSslConfiguration>

using namespace platform;

namespace client {
namespace {

/// The system's certificates and the one that the options name, as PEM.
std::vector<std::string> authorities(const QString &file)
{
    std::vector<std::string> authorities;
    if (!file.isEmpty()) {
        QFile certificate(file);
        if (!certificate.open(QIODevice::ReadOnly))
            throw Exception(QStringLiteral("证书文件“%1”打不开：").arg(file) + certificate.errorString() + u"。");
        authorities.push_back(certificate.readAll().toStdString());
    }
    for (const QSslCertificate &certificate : QSslConfiguration::systemCaCertificates())
        authorities.push_back(certificate.toPem().toStdString());
    return authorities;
}

std::vector<server_client::ServerAddress> addressesOf(const QStringList &texts)
{
    std::vector<server_client::ServerAddress> addresses;
    for (const QString &text : texts)
        addresses.push_back(server_client::ServerAddress::parse(text.toStdString()));
    return addresses;
}

} // namespace

std::unique_ptr<Connections> Connections::openDatabase(const Options &options)
{
    auto connections = std::make_unique<Connections>();
    connections->m_host = std::make_shared<EmbeddedChannel>(engine::openEngine(options.database.toStdString()));
    connections->m_second = connections->m_host;
    connections->m_place = options.database;
    return connections;
}

std::unique_ptr<Connections> Connections::prepareServers(const Options &options)
try {
    auto connections = std::make_unique<Connections>();
    connections->m_host = std::make_shared<ServerChannel>(connections->session(options.servers, options));
    connections->m_second = options.secondServers.isEmpty()
        ? connections->m_host
        : std::make_shared<ServerChannel>(connections->session(options.secondServers, options));
    connections->m_place = (options.servers + options.secondServers).join(QStringLiteral("、"));
    return connections;
} catch (const Exception &) {
    throw;
} catch (const std::exception &exception) {
    throw Exception(QString::fromUtf8(exception.what()));
}

std::shared_ptr<server_client::ServerSession> Connections::session(const QStringList &addresses, const Options &options)
{
    // A thread whose query was cancelled may outlive this object.
    const auto watch = [connections = QPointer(this)](const std::string &address) {
        const auto tell = [connections, text = QString::fromStdString(address)] {
            if (!connections)
                return;
            connections->m_reachedAddress = text;
            Q_EMIT connections->reached(text);
        };
        QMetaObject::invokeMethod(qApp, tell, Qt::QueuedConnection);
    };
    const server_client::SessionOptions settings {
        .addresses = addressesOf(addresses), .authorities = authorities(options.serverCertificate), .compressed = options.compressed
    };
    return m_sessions.emplace_back(std::make_shared<server_client::ServerSession>(settings, watch));
}

void Connections::login(const QString &user, const QString &password)
{
    const auto seconds = std::make_shared<std::int64_t>();
    runLongWork(QStringLiteral("正在登录…"), QStringLiteral("登录已取消"),
        [sessions = m_sessions, user = user.toStdString(), password = password.toStdString(), seconds](WorkProgress &) {
            try {
                for (const auto &session : sessions)
                    session->login(user, password);
                *seconds = sessions.front()->serverTime();
            } catch (const std::exception &exception) {
                throw Exception(QString::fromUtf8(exception.what()));
            }
        });
    m_user = user;
    // The server's own time of day, without a zone.
    m_timeAtLogin = QDateTime(QDate(1970, 1, 1), QTime(0, 0)).addDays(*seconds / 86'400);
    m_timeAtLogin.setTime(QTime(0, 0).addSecs(int(*seconds % 86'400)));
    m_sinceLogin.start();
}

QDateTime Connections::serverTime() const { return m_timeAtLogin.isValid() ? m_timeAtLogin.addMSecs(m_sinceLogin.elapsed()) : QDateTime(); }

} // namespace client
