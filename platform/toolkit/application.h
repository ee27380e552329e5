#pragma once

#include "platform/toolkit/component.h"

#include <QSet>
#include <QVariantMap>

#include <exception>
#include <functional>

class TMainForm;

namespace platform {

/// Flags of a message box, as given to TApplication::messageBox: buttons + icon + default button.
enum MessageFlag : int {
    mbOk = 0,
    mbOkCancel = 1,
    mbIconError = 16,
    mbIconQuestion = 32,
    mbIconWarning = 48,
    mbDefaultButton2 = 256,
};
/// Answers of a message box.
enum MessageAnswer : int { idOk = 1, idCancel = 2 };

struct MessageRequest {
    QString text;
    QString title;
    int flags = mbOk;
    /// The button that Enter presses.
    MessageAnswer defaultAnswer() const { return flags & mbDefaultButton2 && flags & mbOkCancel ? idCancel : idOk; }
};

} // namespace platform

/// The application object: the host's, shared with every plug-in. Owns the screens.
class TApplication : public QObject, public TComponentOwner {
    Q_OBJECT

public:
    explicit TApplication(QObject *parent = nullptr);

    /// The host's main window; null while there is none.
    TMainForm *mainForm() const;
    void setMainForm(TMainForm *form);

    /// Shows a modal message box and returns idOk or idCancel.
    int messageBox(const QString &text, const QString &title, int flags);
    /// The same with one button, once the event at hand is dealt with: for whoever is just being destroyed. Each text is shown once.
    void messageLater(const QString &text, const QString &title, int flags);
    /// Whoever answers message boxes in place of a person; empty: a person does.
    void setMessageResponder(std::function<int(const platform::MessageRequest &)> responder);

    /// Shows an exception the way the host shows errors, and records it as "error". An Abort is what the person wanted: it is only
    /// recorded, as "cancelled", for the host to say so without a box.
    void handleException(std::exception_ptr exception);

    /// The directory of the running program, without a trailing separator.
    QString directory() const;
    /// Where "WindowsIni" lies: directory(), unless the host was told another place.
    QString settingsDirectory() const;
    void setSettingsDirectory(const QString &directory);

    /// Where the libraries lie that screens load: directory(), unless the host was told another place.
    QString pluginDirectory() const;
    void setPluginDirectory(const QString &directory);

    /// Tells whoever watches (the automation) that something happened: `kind` and its particulars.
    void record(const QString &kind, const QVariantMap &particulars);

Q_SIGNALS:
    void happened(const QString &kind, const QVariantMap &particulars);

private:
    QPointer<QObject> m_mainForm;
    std::function<int(const platform::MessageRequest &)> m_responder;
    QSet<QString> m_shown; ///< texts of messageLater
    QString m_settingsDirectory;
    QString m_pluginDirectory;
};

/// The current application object. The platform starts with one of its own; the host and exec may set another.
extern TApplication *Application;
