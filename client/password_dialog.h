#pragma once

#include <QDialog>

#include <optional>

class QLabel;
class QLineEdit;

namespace client {

class Connections;

/// Asks whoever is logged in for a new password, and stays open until the servers have taken it or the person gives up.
class PasswordDialog : public QDialog {
    Q_OBJECT

public:
    /// `before`: the password at hand, when it has just been entered; else it is asked for too.
    PasswordDialog(Connections &connections, const std::optional<QString> &before, QWidget *parent);

private:
    QLineEdit *addField();
    void tryChange();
    void refuse(const QString &message, QLineEdit *field);

    Connections &m_connections;
    QLineEdit *m_before;
    QLineEdit *m_after;
    QLineEdit *m_again;
    QLabel *m_refusal;
};

} // namespace client
