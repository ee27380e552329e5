#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

/// A client that runs off-screen under its automation, with settings of its own, on the shared demo database.
class ClientProcess {
public:
    explicit ClientProcess(
        const QStringList &options = {}, const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~ClientProcess();

    /// Sends a command and waits for its reply; an empty object when the client ended instead.
    QJsonObject ask(QJsonObject command);
    /// The same, expecting "ok": true.
    QJsonObject obey(const QJsonObject &command);
    QJsonObject obey(const QString &what, const QJsonObject &arguments = {});

    QJsonArray events() { return obey(QStringLiteral("events"))[u"events"].toArray(); }
    /// Those of the events that are of that kind.
    QJsonArray events(const QString &kind);
    QString textOf(const QString &control);
    void set(const QString &control, const QString &text);

    QString settingsDirectory() const { return m_settings.path(); }
    /// Ends as a user does and returns the exit code.
    int quit();

    /// A demo network of a few days, made once for the whole test program; "now" of all clients lies at its end.
    static QString database();
    /// Makes the same network in another place, a file or the address of a database.
    static void makeDemo(const QString &place);
    static QString now() { return QStringLiteral("2026-03-15 16:30:00"); }

private:
    QTemporaryDir m_settings;
    QProcess m_process;
};
