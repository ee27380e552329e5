#pragma once

#include "platform/connection/socket_connection.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace client {

struct Options;

/// Keeps what a person in the support wants to know of this client: what it told its user last, and how long its statements took. Literals
/// of statements, waybill numbers among them, are left out from the start. It remembers between sessions, in diagnostics.log of the
/// settings directory, which holds the last lines only.
class Diagnostics : public QObject {
    Q_OBJECT

public:
    Diagnostics();
    ~Diagnostics() override; ///< keeps the lines; when they cannot be written they are lost

    /// Those of earlier sessions.
    static QStringList keptLines();
    QStringList lines() const; ///< the oldest first, earlier sessions included
    /// The same channel, but that the time of each statement is kept.
    std::shared_ptr<platform::StatementChannel> timed(std::shared_ptr<platform::StatementChannel> channel) const;

private:
    class Log;
    class TimedChannel;
    void hear(const QString &kind, const QVariantMap &particulars);

    const std::shared_ptr<Log> m_log; ///< a statement that was given up may outlive the rest
};

/// Version, system and options without any secret, for a person to copy.
QString programDetails(const Options &options, const QString &place);
/// Writes details and lines to a file. Throws Exception that says why not.
void writeDiagnostics(const QString &fileName, const Options &options, const QString &place, const QStringList &lines);

/// A text without its literals and numbers of waybills: what is quoted becomes '…', and so do words of 6 or more characters with a digit.
QString withoutData(QString text);

} // namespace client
