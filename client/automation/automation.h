#pragma once

#include "client/automation/dispatcher.h"
#include "client/automation/line_reader.h"
#include "client/main_window.h"

#include <QJsonArray>
#include <QQueue>

class TDBGridEh;

namespace report {
struct PreviewRequest;
}

namespace client {

enum class Strictness {
    GoOn,
    StopAtFailure, ///< the first command that fails, or query that is refused, ends the program with code 1
};

/// Obeys commands from the standard input on the real windows and answers them on the standard output. The protocol is
/// docs/automation.md. While it lives it records what happens and answers message boxes itself.
class Automation : public QObject {
    Q_OBJECT

public:
    /// Begins to read at once. The end of the input ends the program.
    Automation(MainWindow *window, Strictness strictness);
    ~Automation() override;

private:
    using Member = QJsonObject (Automation::*)(const QJsonObject &arguments);
    struct CommandRow;
    static const QList<CommandRow> &commands();
    void activateWindow();
    void hear(const QString &kind, const QVariantMap &particulars);
    QJsonObject obey(Member command, const QJsonObject &arguments);
    void reply(const QJsonObject &reply);

    QJsonObject open(const QJsonObject &arguments);
    QJsonObject forms(const QJsonObject &arguments);
    QJsonObject activate(const QJsonObject &arguments);
    QJsonObject close(const QJsonObject &arguments);
    QJsonObject query(const QJsonObject &arguments);
    QJsonObject runCommand(const QJsonObject &arguments);
    QJsonObject print(const QJsonObject &arguments);
    QJsonObject exportGrid(const QJsonObject &arguments);
    QJsonObject copy(const QJsonObject &arguments);
    QJsonObject find(const QJsonObject &arguments);
    QJsonObject screenshot(const QJsonObject &arguments);
    QJsonObject answer(const QJsonObject &arguments);
    QJsonObject takeEvents(const QJsonObject &arguments);
    QJsonObject quit(const QJsonObject &arguments);

    QJsonObject controls(const QJsonObject &arguments);
    QJsonObject get(const QJsonObject &arguments);
    QJsonObject set(const QJsonObject &arguments);
    QJsonObject key(const QJsonObject &arguments);
    QJsonObject click(const QJsonObject &arguments);
    QJsonObject page(const QJsonObject &arguments);

    QJsonObject columns(const QJsonObject &arguments);
    QJsonObject rows(const QJsonObject &arguments);
    QJsonObject footer(const QJsonObject &arguments);
    QJsonObject title(const QJsonObject &arguments);
    QJsonObject cell(const QJsonObject &arguments);
    QJsonObject colour(const QJsonObject &arguments);
    QJsonObject filter(const QJsonObject &arguments);
    QJsonObject chart(const QJsonObject &arguments);

    /// The form that "form" names, or the one in front.
    TForm *form(const QJsonObject &arguments) const;
    QObject *component(const QJsonObject &arguments, QStringView argument = u"control") const;
    QWidget *control(const QJsonObject &arguments) const;
    /// The control, on a form that is in front now.
    QWidget *controlInFront(const QJsonObject &arguments) const;
    /// The grid that "view" names (itself or by its frame), or the current one.
    TDBGridEh *view(const QJsonObject &arguments) const;
    /// What a person does with a preview: sees all pages, and saves them when a file was asked for.
    void lookAt(const report::PreviewRequest &preview);

    /// What happened while the present command ran.
    struct Heard {
        QStringList failures; ///< exceptions that reached the application object
        QStringList messages; ///< texts of message boxes
        bool statement = false; ///< one was sent
    };

    MainWindow *m_window;
    const Strictness m_strictness;
    QString m_printFile; ///< where the next preview is saved
    QJsonObject m_printed; ///< the answer to the present `print`; empty until something is shown
    Dispatcher m_dispatcher;
    LineReader m_reader;
    QJsonArray m_events;
    Heard m_heard;
    QQueue<int> m_answers; ///< of the next message boxes
};

/// An argument that must be there; throws Exception when it is not.
QString requiredText(const QJsonObject &arguments, QStringView name);
/// "ctrl", "shift" and "alt" in a list or one text.
Qt::KeyboardModifiers modifiersOf(const QJsonObject &arguments);

} // namespace client
