#pragma once

#include <QProcess>
#include <QStringList>

#include <string>
#include <utility>
#include <vector>

/// A server that runs as a program on loopback; all of them share certificate, users and token key.
class ServerProcess {
public:
    /// Serves the demo database of the test clients, or the one at `url`, at most `rows` of a result. `port` 0: any free one.
    explicit ServerProcess(int port = 0, const QString &url = {}, int rows = 1'000'000);
    ~ServerProcess();

    int port() const { return m_port; }
    QString address() const { return QStringLiteral("https://127.0.0.1:%1").arg(m_port); }
    /// What a client needs to log in at these servers. 张三 may see everything, 分部 what setBranch() says.
    static QStringList clientOptions(const QList<const ServerProcess *> &servers, const QString &user = QStringLiteral("张三"));
    /// Gives the account of 分部 these fields and no others.
    static void setBranch(const std::vector<std::pair<std::string, std::string>> &fields);

    void kill(); ///< as a crash ends it
    void terminate(); ///< as an administrator ends it; returns when it is gone

private:
    QProcess m_process;
    int m_port = 0;
};
