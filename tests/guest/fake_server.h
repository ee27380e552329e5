#pragma once

#include "platform/connection/remote_server.h"

#include <QHash>
#include <QStringList>

/// A server whose tables are given as rows of text; it knows the waybills whose numbers stand in the statement as literals.
class FakeServer : public TCustomRemoteServer {
public:
    using TCustomRemoteServer::TCustomRemoteServer;

    /// Adds a row to a table: the number, then the columns in the order of the statement, separated by commas.
    void add(const QString &table, const QString &row) { m_rows[table].append(row); }
    void clear() { m_rows.clear(); }
    packet::PacketPtr runStatement(const QString &statement) override;

    QStringList statements;
    QString failure; ///< when not empty, the next statements fail with it

private:
    QHash<QString, QStringList> m_rows;
};

/// The table that a statement reads.
QString tableOf(const QString &statement);
