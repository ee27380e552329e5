#include "client/automation/dispatcher.h"

#include "platform/toolkit/exception.h"

#include <QJsonDocument>

using namespace platform;

namespace client {

QJsonObject failureReply(const QString &message) { return { { QStringLiteral("ok"), false }, { QStringLiteral("error"), message } }; }

QByteArray replyLine(const QJsonObject &reply) { return QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n'; }

void Dispatcher::receive(const QByteArray &line)
{
    if (line.trimmed().isEmpty())
        return;
    m_waiting.enqueue(line);
    scheduleNext();
}

void Dispatcher::end()
{
    m_ending = true;
    scheduleNext();
}

/// What is to be done next waits for the next turn of the event loop, so that what the last command left to do comes first.
void Dispatcher::scheduleNext()
{
    if (m_busy || m_stopped)
        return;
    m_busy = !m_waiting.isEmpty();
    if (m_busy)
        QMetaObject::invokeMethod(this, &Dispatcher::obeyNext, Qt::QueuedConnection);
    else if (m_ending)
        Q_EMIT ended();
}

void Dispatcher::obeyNext()
{
    QJsonObject reply;
    try {
        reply = obey(m_waiting.dequeue());
    } catch (...) {
        reply = failureReply(currentExceptionMessage());
    }
    Q_EMIT replied(reply);
    m_busy = false;
    scheduleNext();
}

QJsonObject Dispatcher::obey(const QByteArray &line) const
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError)
        throw Exception(QStringLiteral("不是 JSON：%1").arg(error.errorString()));
    if (!document.isObject())
        throw Exception(QStringLiteral("命令必须是一个 JSON 对象，例如 {\"do\":\"forms\"}"));
    const QString name = document[u"do"].toString();
    const Command command = m_commands.value(name);
    if (!command)
        throw Exception(QStringLiteral("不认识的命令“%1”").arg(name));
    QJsonObject reply = command(document.object());
    reply[u"ok"] = true;
    return reply;
}

} // namespace client
