#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

namespace client {

/// A command and the keys that run it.
struct Shortcut {
    QString command; ///< as the menus call it
    QList<QKeySequence> designed;
    QList<QKeySequence> keys; ///< the person's choice, or the designed ones

    QString keysText() const; ///< as a person reads them
};

/// Puts the keys that the person has chosen in place of the designed ones.
void takeKeptKeys(QList<Shortcut> &shortcuts);
/// Keeps what differs from the design.
void keepKeys(const QList<Shortcut> &shortcuts);

/// The index of the command that a key belongs to; -1: none.
int commandWith(const QList<Shortcut> &shortcuts, const QKeySequence &key);
/// Why a key cannot run a command; "" when it can. Keys that type or move belong to the fields and the grid.
QString refusalOf(const QKeySequence &key);

} // namespace client
