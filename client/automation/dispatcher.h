#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QQueue>

#include <functional>

/// Obeys commands given as one JSON object a line, and answers each with one line: what the command answers and "ok": true, or
/// "ok": false and "error". A command is never begun before the one before it has ended, even if that runs an event loop.
class Dispatcher : public QObject {
    Q_OBJECT

public:
    using Command = std::function<QJsonObject(const QJsonObject &arguments)>;

    void add(const QString &name, Command command) { m_commands.insert(name, std::move(command)); }
    void receive(const QByteArray &line);
    /// No more commands will come.
    void end();

Q_SIGNALS:
    void replied(const QByteArray &line);
    void ended(); ///< everything is obeyed, and no more will come

private:
    void obeyNext();
    void goOn();
    QJsonObject obey(const QByteArray &line) const;

    QHash<QString, Command> m_commands;
    QQueue<QByteArray> m_waiting;
    bool m_busy = false;
    bool m_ending = false;
};

/// The line that answers with an error.
QByteArray failureReply(const QString &message);
