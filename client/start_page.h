#pragma once

#include "client/login.h"

#include <QMap>
#include <QWidget>

#include <utility>

class QLabel;

namespace client {

struct ScreenGroup;

/// What the main window shows while no screen is open: the screens of the login by their groups, to be opened with a click, those that a
/// person likes best or used last, and what a site looks at every morning.
class StartPage : public QWidget {
    Q_OBJECT

public:
    explicit StartPage(const Login &login);

    void showFavourites(const QStringList &screens);
    void showRecent(const QStringList &screens);
    /// Begins with the captions; the numbers follow one by one. Without any nothing is shown but how to get them.
    void showCounts(const QString &heading, const QStringList &captions);
    void showCount(int index, qint64 number);
    /// In place of a number; `reason` is told when the person points at it.
    void showFailure(int index, const QString &reason);

Q_SIGNALS:
    void wanted(const QString &screen);
    void favouritesChanged(const QStringList &screens);
    void countWanted(int index);
    void countsSwitched(bool on);

private:
    void follow(const QString &target);
    void showGroups();
    void showRow(QLabel *label, const QString &heading, const QStringList &screens);
    void showCountTexts();

    const Login m_login;
    QList<std::pair<QLabel *, const ScreenGroup *>> m_groups; ///< of the menus, as far as the login has screens of them
    QLabel *m_favouriteRow;
    QLabel *m_recentRow;
    QLabel *m_countRow;
    QStringList m_favourites;
    QString m_countHeading;
    QStringList m_captions;
    QMap<int, QString> m_numbers; ///< of the counts that have come
    QMap<int, QString> m_reasons; ///< of those that failed
};

} // namespace client
