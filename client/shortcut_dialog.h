#pragma once

#include "client/shortcuts.h"

#include <QDialog>

class QKeySequenceEdit;
class QLabel;
class QTreeWidget;

namespace client {

/// All commands with their keys, which a person can change. A change is told by changed() at once.
class ShortcutDialog : public QDialog {
    Q_OBJECT

public:
    ShortcutDialog(const QList<Shortcut> &shortcuts, QWidget *parent);

Q_SIGNALS:
    void changed(const QList<Shortcut> &shortcuts);

private:
    int current() const;
    void showKeys();
    void addKey(const QKeySequence &pressed);
    void clearKeys();
    void restore(int command);
    void restoreAll();
    void announce();

    QList<Shortcut> m_shortcuts;
    QTreeWidget *m_list;
    QKeySequenceEdit *m_key;
    QLabel *m_notice;
};

} // namespace client
