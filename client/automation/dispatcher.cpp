#include "client/automation/dispatcher.h"

#include "platform/toolkit/exception.h"

#include <QJsonDocument>

namespace {

QByteArray replyLine(const QJsonObject &reply) { return QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n'; }

} // namespace

QByteArray failureReply(const QString &message)
{
    return replyLine({ { QStringLiteral("ok"), false }, { QStringLiteral("error"), message } });
}

void Dispatcher::receive(const QByteArray &line)
{
    if (line.trimmed().isEmpty())
        return;
    m_waiting.enqueue(line);
    goOn();
}

void Dispatcher::end()
{
    m_ending = true;
    goOn();
}

/// What is to be done next waits for the next turn of the event loop, so that what the last command left to do comes first.
void Dispatcher::goOn()
{
    if (m_busy)
        return;
    m_busy = !m_waiting.isEmpty();
    if (m_busy)
        QMetaObject::invokeMethod(this, &Dispatcher::obeyNext, Qt::QueuedConnection);
    else if (m_ending)
        Q_EMIT ended();
}

void Dispatcher::obeyNext()
{
    QByteArray reply;
    try {
        reply = replyLine(obey(m_waiting.dequeue()));
    } catch (...) {
        reply = failureReply(currentExceptionMessage());
    }
    Q_EMIT replied(reply);
    m_busy = false;
    goOn();
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
