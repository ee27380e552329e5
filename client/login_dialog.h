#pragma once

#include "client/keyring.h"

#include <QDialog>

#include <functional>
#include <memory>

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace client {

class Connections;

/// A label for why something was refused; hidden until there is a reason.
QLabel *refusalLabel(QWidget *parent);
/// Shows the reason, and makes room for it in the dialog around.
void showRefusal(QLabel *label, const QString &reason);

/// Asks who logs in, and at which servers where none are known, and stays open until they let the person in or the person gives up. A
/// person who must change the password is asked for the new one as well.
class LoginDialog : public QDialog {
    Q_OBJECT

public:
    LoginDialog(Connections &connections, const QString &user, QWidget *parent = nullptr);
    /// Offers to keep the password there, and takes the one that is kept.
    void useKeyring(const Keyring &keyring);
    /// Lets the person name the servers; `prepare` makes the connections to those that were not there before, or throws Exception.
    using Prepare = std::function<std::shared_ptr<Connections>(const QStringList &servers)>;
    void offerServers(Prepare prepare);
    /// Those to the servers that the person has named; null when nothing else was named.
    const std::shared_ptr<Connections> &namedConnections() const { return m_named; }
    /// For a login over screens that `user` has opened: says why, and asks before somebody else logs in, which closes them.
    void askAgain(const QString &why);

private:
    void tryLogin();
    bool mayCloseScreens();
    void keepPassword(const QString &password);
    void updateButton();
    void takeServers();

    Connections *m_connections; ///< never null
    std::shared_ptr<Connections> m_named;
    Prepare m_prepare;
    QLabel *m_place;
    QLineEdit *m_servers = nullptr; ///< null: they cannot be changed
    QLineEdit *m_user;
    QLineEdit *m_password;
    QLabel *m_refusal;
    QPushButton *m_login;
    QPushButton *m_leave;
    QFormLayout *m_form;
    std::optional<Keyring> m_keyring;
    QCheckBox *m_keeps = nullptr; ///< null without a keyring
    QString m_ownerOfScreens; ///< empty: there are none
};

} // namespace client
