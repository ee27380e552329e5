#pragma once

#include "client/conditions/condition_store.h"

#include <QObject>

class QAction;
class QMenu;
class TForm;

namespace client {

/// The conditions of the screens as the menu offers them: those of the last query, and sets that a person has named.
class ConditionMemory : public QObject {
    Q_OBJECT

public:
    explicit ConditionMemory(const QString &folder);
    const QString &folder() const { return m_store.folder(); }

    /// Keeps what stands on a screen as its last conditions.
    void keepLast(const TForm &screen);
    void putBackLast(TForm &screen);
    /// Asks for a name and keeps what stands on the screen.
    void saveAs(const TForm &screen);
    /// Lets a person rename and delete the named sets of a screen.
    void manage(const TForm &screen);
    /// Adds an action for each named set of a screen, which puts it back; they belong to `menu`.
    QList<QAction *> addNamed(QMenu *menu, TForm *screen);
    /// Puts a set back and tells of what does not fit any more.
    void putBack(TForm &screen, const ConditionSet &set);

Q_SIGNALS:
    /// Something to say without a box.
    void said(const QString &text);

private:
    ConditionStore m_store;
};

} // namespace client
