#include "client/automation/automation.h"

#include "platform/toolkit/handler.h"

#include <QApplication>
#include <QJsonDocument>

#include <cstdio>
#include <iostream>
#include <thread>

Automation::Automation(MainWindow *window)
    : m_window(window)
{
    connect(Application, &TApplication::happened, this, [this](const QString &kind, const QVariantMap &particulars) {
        QJsonObject event = QJsonObject::fromVariantMap(particulars);
        event[u"event"] = kind;
        m_events.append(event);
    });
    Application->setMessageResponder(
        [this](const MessageRequest &request) { return std::exchange(m_nextAnswer, std::nullopt).value_or(request.defaultAnswer()); });
}

void Automation::start()
{
    std::thread([this] {
        std::string line;
        while (std::getline(std::cin, line))
            QMetaObject::invokeMethod(
                this, [this, text = QByteArray::fromStdString(line)] { received(text); }, Qt::QueuedConnection);
        QMetaObject::invokeMethod(
            this, [this] { received(R"({"do":"quit"})"); }, Qt::QueuedConnection);
    }).detach();
}

void Automation::received(const QByteArray &line)
{
    // A command that runs a statement waits in a loop of its own; what arrives meanwhile has its turn afterwards.
    m_waiting.enqueue(line);
    if (m_busy)
        return;
    m_busy = true;
    while (!m_waiting.isEmpty()) {
        const QByteArray reply = obey(m_waiting.dequeue());
        std::fputs(reply.constData(), stdout);
        std::fflush(stdout);
    }
    m_busy = false;
}

QByteArray Automation::obey(const QByteArray &line)
{
    QJsonObject reply;
    try {
        QJsonParseError error;
        const QJsonObject arguments = QJsonDocument::fromJson(line, &error).object();
        if (error.error != QJsonParseError::NoError)
            throw Exception(QStringLiteral("不是 JSON 对象：%1").arg(error.errorString()));
        const QString name = arguments[u"do"].toString();
        const Command command = commands().value(name);
        if (!command)
            throw Exception(QStringLiteral("不认识的命令“%1”").arg(name));
        reply = (this->*command)(arguments);
        reply[u"ok"] = true;
    } catch (const std::exception &exception) {
        reply = { { QStringLiteral("ok"), false }, { QStringLiteral("error"), exceptionMessage(exception) } };
    }
    return QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n';
}

const QHash<QString, Automation::Command> &Automation::commands()
{
    static const QHash<QString, Command> table {
        { QStringLiteral("open"), &Automation::open },
        { QStringLiteral("forms"), &Automation::forms },
        { QStringLiteral("activate"), &Automation::activate },
        { QStringLiteral("close"), &Automation::close },
        { QStringLiteral("controls"), &Automation::controls },
        { QStringLiteral("get"), &Automation::get },
        { QStringLiteral("set"), &Automation::set },
        { QStringLiteral("key"), &Automation::key },
        { QStringLiteral("query"), &Automation::query },
        { QStringLiteral("click"), &Automation::click },
        { QStringLiteral("page"), &Automation::page },
        { QStringLiteral("columns"), &Automation::columns },
        { QStringLiteral("rows"), &Automation::rows },
        { QStringLiteral("footer"), &Automation::footer },
        { QStringLiteral("title"), &Automation::title },
        { QStringLiteral("cell"), &Automation::cell },
        { QStringLiteral("colour"), &Automation::colour },
        { QStringLiteral("export"), &Automation::exportView },
        { QStringLiteral("copy"), &Automation::copy },
        { QStringLiteral("find"), &Automation::find },
        { QStringLiteral("screenshot"), &Automation::screenshot },
        { QStringLiteral("answer"), &Automation::answer },
        { QStringLiteral("events"), &Automation::takeEvents },
        { QStringLiteral("quit"), &Automation::quit },
    };
    return table;
}
