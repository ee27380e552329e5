#pragma once

#include "client/conditions/condition_store.h"
#include "client/day_counts.h"
#include "client/login.h"
#include "client/start_page.h"

#include <QElapsedTimer>

#include <memory>

namespace client {

/// Fills the start page: keeps a person's favourite and last used screens, and asks for the counts of the day before while the page is
/// seen.
class StartDesk : public QObject {
    Q_OBJECT

public:
    enum class Counting { Offered, Never };

    /// `page` and `login` outlive this; `folder` is the person's.
    StartDesk(
        StartPage *page, const QString &folder, std::shared_ptr<platform::StatementChannel> channel, const Login &login, Counting counting);

    /// A screen was opened, whoever did it.
    void remember(const QString &screen);
    /// The page came to be seen, or is seen no more.
    void setSeen(bool seen);

Q_SIGNALS:
    void countWanted(const client::DayCount &count);
    /// Something to say without a box.
    void said(const QString &text);

private:
    void keep(const QString &name, const QStringList &words);
    QStringList kept(const QString &name);
    void switchCounts(bool on);
    QList<DayCount> offeredCounts() const;
    void showCounts();

    StartPage *m_page;
    ConditionStore m_store;
    DayCounter m_counter;
    const Login &m_login;
    const Counting m_counting;
    QList<DayCount> m_counts; ///< as they stand on the page
    QElapsedTimer m_sinceCounting;
    bool m_isSeen = false;
};

} // namespace client
