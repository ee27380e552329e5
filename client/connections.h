#pragma once

#include "platform/connection/socket_connection.h"
#include "server_client/account.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace server_client {
class ServerSession;
}

namespace client {

struct Options;

/// Where the host's statements go: to a database in this process, or to application servers.
class Connections : public QObject {
    Q_OBJECT

public:
    /// Opens the database that the options name; throws when it cannot.
    static std::unique_ptr<Connections> openDatabase(const Options &options);
    /// Prepares sessions with the servers that the options name, not yet logged in. Throws Exception for a wrong address or
    /// certificate.
    static std::unique_ptr<Connections> prepareServers(const Options &options);

    /// Logs in at the servers and sets the clock by theirs, off the interface thread. Remembers no password. Whoever must change it first
    /// is not in yet, see account(). Throws Exception that says why not, a program that the servers find too old included, and Abort when
    /// the user cancels.
    void login(const QString &user, const QString &password);
    /// Gives whoever is logged in another password. Throws like login().
    void changePassword(const QString &before, const QString &after);
    /// Whether the servers are asked to compress from now on.
    void setCompressed(bool compressed);
    /// Tells the servers that the user goes; takes two seconds at most.
    void logout();
    /// For the audit log; does not wait.
    void reportRefusedScreen(const QString &screen);
    /// `ask` is called when a statement finds that nobody is logged in any more, with the reason; it comes back when the statement may be
    /// sent again, and throws otherwise. Without it the statement fails.
    void setAskAgain(std::function<void(const QString &why)> ask) { m_askAgain = std::move(ask); }

    const std::shared_ptr<platform::StatementChannel> &host() const { return m_host; }
    const std::shared_ptr<platform::StatementChannel> &second() const { return m_second; } ///< the same as host() unless another is named
    const QString &user() const { return m_user; } ///< who logged in; empty for a database
    const std::optional<server_client::Account> &account() const { return m_account; } ///< nothing for a database
    const QString &place() const { return m_place; } ///< the database or the servers, as a person reads it
    /// What the database lacks that the screens need, in words; a server tells it at the login.
    const QStringList &databaseFaults() const { return m_databaseFaults; }
    /// The server that the last statement got through to; "" when none does, or none is used.
    const QString &reachedAddress() const { return m_reachedAddress; }
    /// Invalid unless a server told it.
    QDateTime serverTime() const;

Q_SIGNALS:
    /// A statement got through to this server; "": none can be reached.
    void reached(const QString &address);

private:
    struct Secrets;
    void enter(const QString &caption, const std::shared_ptr<Secrets> &secrets);
    void logInAgain(const platform::SessionEnded &ended);
    std::shared_ptr<platform::StatementChannel> channel(const QStringList &addresses, const Options &options);
    std::shared_ptr<server_client::ServerSession> session(const QStringList &addresses, const Options &options);

    std::shared_ptr<platform::StatementChannel> m_host;
    std::shared_ptr<platform::StatementChannel> m_second;
    std::vector<std::shared_ptr<server_client::ServerSession>> m_sessions;
    std::function<void(const QString &)> m_askAgain;
    bool m_isAsking = false;
    QString m_user;
    std::optional<server_client::Account> m_account;
    QString m_place;
    QStringList m_databaseFaults;
    QString m_reachedAddress;
    QDateTime m_timeAtLogin;
    QElapsedTimer m_sinceLogin;
};

} // namespace client
