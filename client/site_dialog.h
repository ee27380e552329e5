#pragma once

#include <QDialog>

class QComboBox;
class QPushButton;

namespace client {

class Connections;

/// Asks at which of the account's sites the person works now, and proposes the one of the last time.
class SiteDialog : public QDialog {
    Q_OBJECT

public:
    SiteDialog(const QStringList &sites, const QString &user, QWidget *parent = nullptr);
    QString site() const;

private:
    void take();

    QString m_user;
    QStringList m_sites;
    QComboBox *m_box;
    QPushButton *m_enter;
};

/// The sites among which whoever is logged in has to choose; empty when there is nothing to choose. May ask the servers; throws
/// Exception.
QStringList sitesToChoose(const Connections &connections);

} // namespace client
