#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace client {

class Connections;

/// A label for why something was refused; hidden until there is a reason.
QLabel *refusalLabel(QWidget *parent);
/// Shows the reason, and makes room for it in the dialog around.
void showRefusal(QLabel *label, const QString &reason);

/// Asks who logs in at the servers, and stays open until they let the person in or the person gives up. A person who must change the
/// password is asked for the new one as well.
class LoginDialog : public QDialog {
    Q_OBJECT

public:
    LoginDialog(Connections &connections, const QString &user, QWidget *parent = nullptr);
    /// For a login over screens that `user` has opened: says why, and asks before somebody else logs in, which closes them.
    void askAgain(const QString &why);

private:
    void tryLogin();
    bool mayCloseScreens();
    void updateButton();

    Connections &m_connections;
    QLineEdit *m_user;
    QLineEdit *m_password;
    QLabel *m_refusal;
    QPushButton *m_login;
    QPushButton *m_leave;
    QString m_ownerOfScreens; ///< empty: there are none
};

} // namespace client
