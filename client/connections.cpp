#include "client/connections.h"

#include "client/embedded_channel.h"
#include "client/options.h"
#include "client/server_channel.h"
#include "engine/check/database_check.h"
#include "engine/pool/open_engine.h"
#include "platform/toolkit/long_work.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QScopedValueRollback>
#include <QThreadPool>
#include <QVersionNumber>

#include <atomic>
#include <chrono>
#include <semaphore>
#include <thread>

using namespace platform;

namespace client {
namespace {

constexpr auto restartTime = std::chrono::seconds(8); ///< of a server, the rest of its waiting for others included

/// The certificate that the options name, as PEM.
std::vector<std::string> authorities(const QString &file)
{
    if (file.isEmpty())
        return {};
    QFile certificate(file);
    if (!certificate.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("证书文件“%1”打不开：").arg(file) + certificate.errorString() + u"。");
    return { certificate.readAll().toStdString() };
}

std::vector<server_client::ServerAddress> addressesOf(const QStringList &texts)
{
    std::vector<server_client::ServerAddress> addresses;
    for (const QString &text : texts)
        addresses.push_back(server_client::ServerAddress::parse(text.toStdString()));
    return addresses;
}

void refuseOldProgram(const server_client::Account &account)
{
    const QString wanted = QString::fromStdString(account.smallestClient);
    const QString here = QCoreApplication::applicationVersion();
    if (!wanted.isEmpty() && QVersionNumber::fromString(here) < QVersionNumber::fromString(wanted))
        throw Exception(QStringLiteral("请升级到 %1：中心要求客户端不低于这个版本，本机的是 %2。请向管理员索取新的安装包，安装后再登录。")
                            .arg(wanted, here));
}

} // namespace

std::unique_ptr<Connections> Connections::openDatabase(const Options &options)
{
    auto connections = std::make_unique<Connections>();
    const std::shared_ptr<engine::Engine> engine = engine::openEngine(options.database.toStdString());
    for (const std::string &fault : engine::databaseFaults(*engine))
        connections->m_databaseFaults.append(QString::fromStdString(fault));
    connections->m_host = std::make_shared<EmbeddedChannel>(engine);
    connections->m_second = connections->m_host;
    connections->m_place = options.database;
    return connections;
}

std::unique_ptr<Connections> Connections::prepareServers(const Options &options)
try {
    auto connections = std::make_unique<Connections>();
    connections->m_host = connections->channel(options.servers, options);
    connections->m_second = options.secondServers.isEmpty() ? connections->m_host : connections->channel(options.secondServers, options);
    connections->m_place = (options.servers + options.secondServers).join(QStringLiteral("、"));
    return connections;
} catch (const Exception &) {
    throw;
} catch (const std::exception &exception) {
    throw Exception(QString::fromUtf8(exception.what()));
}

std::shared_ptr<StatementChannel> Connections::channel(const QStringList &addresses, const Options &options)
{
    return std::make_shared<ServerChannel>(session(addresses, options), [connections = QPointer(this)](const SessionEnded &ended) {
        if (!connections)
            throw ended;
        connections->logInAgain(ended);
    });
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
    const server_client::SessionOptions settings { .addresses = addressesOf(addresses),
        .authorities = authorities(options.serverCertificate),
        .compressed = options.compressed,
        .patience = restartTime };
    return m_sessions.emplace_back(std::make_shared<server_client::ServerSession>(settings, watch));
}

/// What a login needs and brings, shared with the thread that logs in.
struct Connections::Secrets {
    Secrets(const QString &name, const QString &entered, const QString &wanted = {})
        : user(name.toStdString())
        , password(entered.toStdString())
        , newPassword(wanted.toStdString())
    {
    }
    Secrets(const Secrets &) = delete;
    ~Secrets()
    {
        server_client::wipe(password);
        server_client::wipe(newPassword);
    }

    std::string user;
    std::string password;
    std::string newPassword; ///< empty: it stays
    server_client::Account account {};
    std::int64_t seconds = 0; ///< the servers' clock
};

/// The first server changes the password; the others may share its users, or be told by the operator.
void Connections::enter(const QString &caption, const std::shared_ptr<Secrets> &secrets)
{
    runLongWork(caption, QStringLiteral("登录已取消"), [sessions = m_sessions, secrets](WorkProgress &) {
        const bool changes = !secrets->newPassword.empty();
        try {
            server_client::ServerSession &first = *sessions.front();
            secrets->account
                = changes ? first.changePassword(secrets->password, secrets->newPassword) : first.login(secrets->user, secrets->password);
            if (secrets->account.mustChangePassword)
                return;
            for (std::size_t other = 1; other < sessions.size(); ++other)
                (void)sessions[other]->login(secrets->user, changes ? secrets->newPassword : secrets->password);
            secrets->seconds = first.serverTime();
        } catch (const std::exception &exception) {
            throw Exception(QString::fromUtf8(exception.what()));
        }
    });
    refuseOldProgram(secrets->account);
    m_user = QString::fromStdString(secrets->user);
    m_account = secrets->account;
    m_databaseFaults.clear();
    for (const std::string &fault : m_account->databaseFaults)
        m_databaseFaults.append(QString::fromStdString(fault));
    if (m_account->user.empty())
        m_account->user = secrets->user;
    // The server's own time of day, without a zone.
    m_timeAtLogin = QDateTime(QDate(1970, 1, 1), QTime(0, 0)).addDays(secrets->seconds / 86'400);
    m_timeAtLogin.setTime(QTime(0, 0).addSecs(int(secrets->seconds % 86'400)));
    m_sinceLogin.start();
}

void Connections::login(const QString &user, const QString &password)
{
    enter(QStringLiteral("正在登录…"), std::make_shared<Secrets>(user, password));
}

void Connections::changePassword(const QString &before, const QString &after)
{
    if (after.isEmpty())
        throw Exception(QStringLiteral("新密码不能是空的，请输入新密码。"));
    enter(QStringLiteral("正在修改密码…"), std::make_shared<Secrets>(m_user, before, after));
}

void Connections::logInAgain(const SessionEnded &ended)
{
    // What a window asks by itself while the person is being asked fails.
    if (!m_askAgain || m_isAsking)
        throw ended;
    const QScopedValueRollback asking(m_isAsking, true);
    m_askAgain(ended.message());
}

void Connections::setCompressed(bool compressed)
{
    for (const auto &session : m_sessions)
        session->setCompressed(compressed);
}

void Connections::logout()
{
    constexpr auto patience = std::chrono::seconds(2);
    std::stop_source stop;
    std::binary_semaphore done(0);
    std::jthread going([&] {
        for (const auto &session : m_sessions)
            session->logout(stop.get_token());
        done.release();
    });
    if (!done.try_acquire_for(patience))
        stop.request_stop();
}

void Connections::reportRefusedScreen(const QString &screen)
{
    constexpr int mostWaiting = 20;
    static std::atomic<int> waiting { 0 };
    if (m_sessions.empty() || waiting >= mostWaiting)
        return;
    ++waiting;
    QThreadPool::globalInstance()->start([session = m_sessions.front(), name = screen.left(100).toStdString()] {
        session->reportRefusedScreen(name);
        --waiting;
    });
}

QDateTime Connections::serverTime() const { return m_timeAtLogin.isValid() ? m_timeAtLogin.addMSecs(m_sinceLogin.elapsed()) : QDateTime(); }

} // namespace client
