#pragma once

#include "client/conditions/condition_store.h"

#include <QMap>
#include <QObject>
#include <QTimer>

class QAction;
class QMenu;
class TForm;

namespace client {

/// The conditions of the screens as the menu offers them: those of the last query, and sets that a person has named.
class ConditionMemory : public QObject {
    Q_OBJECT

public:
    explicit ConditionMemory(const QString &folder);
    ~ConditionMemory() override; ///< writes what is noted
    const QString &folder() const { return m_store.folder(); }

    /// Notes what stands on a screen as its last conditions. They are written seconds later, so that nobody waits for the disk.
    void keepLast(const TForm &screen);
    /// Writes what is noted now.
    void flush();
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
    void write(const QString &screen, const ConditionSet &last);
    KeptConditions keptOf(const TForm &screen);

    ConditionStore m_store;
    QMap<QString, ConditionSet> m_noted; ///< last conditions by screen, not written yet
    QTimer m_writing;
};

} // namespace client
