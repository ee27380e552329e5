#pragma once

#include "client/conditions/condition_set.h"
#include "platform/connection/socket_connection.h"

#include <QObject>

#include <memory>
#include <thread>

namespace client {

/// A number that a site looks at every morning, and the screen that lists what it counts.
struct DayCount {
    QStringView caption;
    QStringView screen;
    QString statement; ///< counts what the screen's query would list
    QList<ConditionValue> conditions; ///< of the screen
};

/// Those of a site and the whole of a day. The statements ask as the screens do, and bring one row each.
QList<DayCount> dayCounts(const QString &site, QDate day);

/// Asks for counts in the background, one after another.
class DayCounter : public QObject {
    Q_OBJECT

public:
    explicit DayCounter(std::shared_ptr<platform::StatementChannel> channel);
    ~DayCounter() override; ///< stops, and waits for the statement to end

    /// Does nothing while earlier ones are being asked.
    void start(const QList<DayCount> &counts);
    /// What has not been answered yet will not be; the running statement is cancelled.
    void stop();

Q_SIGNALS:
    void counted(int index, qint64 number);
    void failed(int index, const QString &reason);

private:
    void ask(const std::stop_token &stop, int index, const std::string &statement);

    std::shared_ptr<platform::StatementChannel> m_channel;
    std::jthread m_thread;
    bool m_runs = false;
};

} // namespace client
