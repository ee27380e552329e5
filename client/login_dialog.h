#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace client {

class Connections;

/// Asks who logs in at the servers, and stays open until they let the person in or the person gives up.
class LoginDialog : public QDialog {
    Q_OBJECT

public:
    LoginDialog(Connections &connections, const QString &user, QWidget *parent = nullptr);

private:
    void tryLogin();
    void updateButton();

    Connections &m_connections;
    QLineEdit *m_user;
    QLineEdit *m_password;
    QLabel *m_refusal;
    QPushButton *m_login;
};

} // namespace client
