#include "client/automation/dispatcher.h"

#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

using namespace client;

namespace {

class DispatcherTest : public testing::Test {
protected:
    DispatcherTest()
    {
        QObject::connect(&m_dispatcher, &Dispatcher::replied, &m_dispatcher,
            [this](const QJsonObject &reply) { m_log.append(replyLine(reply).trimmed()); });
        QObject::connect(&m_dispatcher, &Dispatcher::ended, &m_dispatcher, [this] { m_log.append("ended"); });
        m_dispatcher.add(QStringLiteral("echo"), [](const QJsonObject &arguments) {
            return QJsonObject { { QStringLiteral("said"), arguments[u"text"] } };
        });
        m_dispatcher.add(QStringLiteral("fail"), [](const QJsonObject &) -> QJsonObject { throw Exception(QStringLiteral("坏了")); });
        // A command that runs an event loop, in which more commands and the end arrive.
        m_dispatcher.add(QStringLiteral("nest"), [this](const QJsonObject &) {
            m_dispatcher.receive(R"({"do":"echo","text":"later"})");
            m_dispatcher.end();
            for (int turn = 0; turn < 10; ++turn)
                QCoreApplication::processEvents();
            m_log.append("nested");
            return QJsonObject();
        });
    }
    QByteArrayList run(const QByteArrayList &lines)
    {
        m_log.clear();
        for (const QByteArray &line : lines)
            m_dispatcher.receive(line);
        for (int turn = 0; turn < 10; ++turn)
            QCoreApplication::processEvents();
        return m_log;
    }

    Dispatcher m_dispatcher;
    QByteArrayList m_log;
};

TEST_F(DispatcherTest, EveryLineButABlankOneGetsOneReply)
{
    EXPECT_EQ(run({ R"({"do":"echo","text":"北京"})", "", "  ", R"({"do":"fail"})", R"({"do":"echo"})" }),
        QByteArrayList({ R"({"ok":true,"said":"北京"})", R"({"error":"坏了","ok":false})", R"({"ok":true})" }));
    for (const char *line : { "no json", "[1]", "{}", R"({"do":"nope"})", R"({"do":1})", "{\"do\":\"echo\"", "\xFF\xFE" }) {
        const QByteArrayList replies = run({ line });
        ASSERT_EQ(replies.size(), 1) << line;
        EXPECT_TRUE(replies[0].startsWith(R"({"error":")") && replies[0].endsWith(R"("ok":false})")) << replies[0].constData();
    }
}

TEST_F(DispatcherTest, WhatArrivesDuringACommandWaitsUntilItIsDone)
{
    EXPECT_EQ(run({ R"({"do":"nest"})", R"({"do":"echo","text":"next"})" }),
        QByteArrayList({ "nested", R"({"ok":true})", R"({"ok":true,"said":"next"})", R"({"ok":true,"said":"later"})", "ended" }));
}

} // namespace
