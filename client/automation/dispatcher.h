#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QQueue>

#include <functional>

namespace client {

/// Obeys commands given as one JSON object a line, and answers each with one line: what the command answers and "ok": true, or
/// "ok": false and "error". A command is never begun before the one before it has ended, even if that runs an event loop.
class Dispatcher : public QObject {
    Q_OBJECT

public:
    using Command = std::function<QJsonObject(const QJsonObject &arguments)>;

    void add(const QString &name, const Command &command) { m_commands.insert(name, command); }
    void receive(const QByteArray &line);
    /// No more commands will come.
    void end();
    /// No more commands are obeyed, those that wait neither.
    void stop() { m_stopped = true; }

Q_SIGNALS:
    void replied(const QJsonObject &reply);
    void ended(); ///< everything is obeyed, and no more will come

private:
    void obeyNext();
    void scheduleNext();
    QJsonObject obey(const QByteArray &line) const;

    QHash<QString, Command> m_commands;
    QQueue<QByteArray> m_waiting;
    bool m_busy = false;
    bool m_ending = false;
    bool m_stopped = false;
};

/// The answer with an error.
QJsonObject failureReply(const QString &message);
/// An answer as it is written.
QByteArray replyLine(const QJsonObject &reply);

} // namespace client
