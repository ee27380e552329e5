#pragma once

#include <QCursor>
#include <QHash>
#include <QObject>

class QWidget;

namespace platform {

/// The cursors that every host knows.
enum CursorNumber : int {
    crDefault = 0,
    crQueryBusy = 102, ///< registered by the host; shown while a query runs
};

} // namespace platform

/// The screen object: cursors by number and the keyboard focus.
class TScreen : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    int cursor() const { return m_cursor; }
    /// Shows cursor `number` over the whole program until crDefault is set; an unregistered number shows the default one.
    void setCursor(int number);
    void registerCursor(int number, const QCursor &cursor);

private:
    QHash<int, QCursor> m_cursors;
    int m_cursor = platform::crDefault;
    bool m_overridden = false;
};

/// The current screen object; see Application.
extern TScreen *Screen;

namespace platform {

/// Shows the busy cursor of a query as long as it lives, whatever happens meanwhile.
class BusyCursor {
public:
    BusyCursor() { Screen->setCursor(crQueryBusy); }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
    ~BusyCursor() { Screen->setCursor(crDefault); }
};

/// Moves the keyboard focus on behalf of code (not of a person): the control that loses it runs its exit handler first.
void focusControl(QWidget *control);

} // namespace platform
