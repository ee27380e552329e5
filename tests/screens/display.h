#pragma once

#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QProcess>

constexpr int patience = 20'000; ///< milliseconds; keys take their time

/// An X server that shows nothing to anybody.
class VirtualDisplay {
public:
    explicit VirtualDisplay(const QString &screen = QStringLiteral("1600x1000x24"))
    {
        m_server.start(QStringLiteral("Xvfb"),
            { QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"), screen,
                QStringLiteral("-nolisten"), QStringLiteral("tcp") });
        while (!m_server.canReadLine() && m_server.waitForReadyRead(patience)) { }
        m_name = u':' + QString::fromLatin1(m_server.readLine().trimmed());
    }
    ~VirtualDisplay()
    {
        m_server.terminate();
        m_server.waitForFinished(patience);
    }
    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_name);
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        return environment;
    }
    /// Gives the keyboard to the window whose title has this text; there is no window manager to do it.
    void focusWindow(const QString &title) const
    {
        act({ QStringLiteral("search"), QStringLiteral("--sync"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title,
            QStringLiteral("windowfocus"), QStringLiteral("--sync") });
    }
    void press(const QStringList &keys) const
    {
        act(QStringList { QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("20") } + keys);
    }
    void type(const QString &text) const { act({ QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), text }); }
    /// Lets xdotool act.
    void act(const QStringList &arguments) const
    {
        QProcess tool;
        tool.setProcessEnvironment(environment());
        tool.start(QStringLiteral("xdotool"), arguments);
        EXPECT_TRUE(tool.waitForFinished(patience) && tool.exitCode() == 0) << arguments.join(u' ').toStdString();
    }

private:
    QProcess m_server;
    QString m_name;
};
