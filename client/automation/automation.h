#pragma once

#include "client/main_window.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QQueue>

#include <optional>

class TDBGridEh;

/// Obeys commands, one JSON object a line, on the real windows and answers each with one line. The protocol is docs/automation.md.
class Automation : public QObject {
    Q_OBJECT

public:
    /// From now on records what happens and answers message boxes itself.
    explicit Automation(MainWindow *window);
    /// Begins to read the standard input on a thread of its own; the end of input quits.
    void start();

private:
    using Command = QJsonObject (Automation::*)(const QJsonObject &arguments);
    static const QHash<QString, Command> &commands();

    void received(const QByteArray &line);
    QByteArray obey(const QByteArray &line);

    QJsonObject open(const QJsonObject &arguments);
    QJsonObject forms(const QJsonObject &arguments);
    QJsonObject activate(const QJsonObject &arguments);
    QJsonObject close(const QJsonObject &arguments);
    QJsonObject controls(const QJsonObject &arguments);
    QJsonObject get(const QJsonObject &arguments);
    QJsonObject set(const QJsonObject &arguments);
    QJsonObject key(const QJsonObject &arguments);
    QJsonObject query(const QJsonObject &arguments);
    QJsonObject click(const QJsonObject &arguments);
    QJsonObject page(const QJsonObject &arguments);
    QJsonObject columns(const QJsonObject &arguments);
    QJsonObject rows(const QJsonObject &arguments);
    QJsonObject footer(const QJsonObject &arguments);
    QJsonObject title(const QJsonObject &arguments);
    QJsonObject cell(const QJsonObject &arguments);
    QJsonObject colour(const QJsonObject &arguments);
    QJsonObject exportView(const QJsonObject &arguments);
    QJsonObject copy(const QJsonObject &arguments);
    QJsonObject find(const QJsonObject &arguments);
    QJsonObject screenshot(const QJsonObject &arguments);
    QJsonObject answer(const QJsonObject &arguments);
    QJsonObject takeEvents(const QJsonObject &arguments);
    QJsonObject quit(const QJsonObject &arguments);

    TForm *form(const QJsonObject &arguments) const;
    QWidget *control(const QJsonObject &arguments) const;
    TDBGridEh *view(const QJsonObject &arguments) const;

    MainWindow *m_window;
    QJsonArray m_events;
    std::optional<int> m_nextAnswer;
    QQueue<QByteArray> m_waiting;
    bool m_busy = false;
};
