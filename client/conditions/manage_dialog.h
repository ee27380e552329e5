#pragma once

#include <QDialog>

class QListWidget;
class QPushButton;

namespace client {

/// Renames and deletes the named conditions of a screen. Nothing is kept before the person accepts.
class ManageConditionsDialog : public QDialog {
    Q_OBJECT

public:
    explicit ManageConditionsDialog(const QStringList &names, QWidget *parent = nullptr);

    /// What became of each: its name before and its name now; deleted ones are missing.
    QList<std::pair<QString, QString>> names() const;

    void accept() override;

private:
    void updateButtons();

    QListWidget *m_list;
    QPushButton *m_rename;
    QPushButton *m_delete;
};

} // namespace client
