#pragma once

#include <QWidget>

namespace client {

struct Login;

/// What the main window shows while no screen is open: the screens of the login by their groups, to be opened with a click.
class StartPage : public QWidget {
    Q_OBJECT

public:
    explicit StartPage(const Login &login);

Q_SIGNALS:
    void wanted(const QString &screen);
};

} // namespace client
