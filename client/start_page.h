#pragma once

#include <QWidget>

namespace client {

/// What the main window shows while no screen is open: all screens by their groups, to be opened with a click.
class StartPage : public QWidget {
    Q_OBJECT

public:
    StartPage();

Q_SIGNALS:
    void wanted(const QString &screen);
};

} // namespace client
