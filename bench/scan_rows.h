#pragma once

#include "bench/scan_table.h"
#include "platform/connection/socket_connection.h"
#include "platform/dataset/client_data_set.h"

#include <QSqlDatabase>
#include <QSqlQueryModel>

#include <memory>

struct sqlite3;

/// Ends the program with the message.
[[noreturn]] void failWith(const QString &message);

class Database {
public:
    explicit Database(const QString &path);
    ~Database();
    Database(const Database &) = delete;

    void run(const QString &sql);
    sqlite3 *handle() const { return m_handle; }

private:
    sqlite3 *m_handle = nullptr;
};

void generateScans(const QString &path);

/// Runs statements through the engine on the file.
std::shared_ptr<platform::StatementChannel> engineChannel(const QString &path);
/// Opens the dataset on all scans.
void load(TClientDataSetEx &dataSet, TSocketConnectionEx &connection);

QSqlDatabase openForModel(const QString &path);
void load(QSqlQueryModel &model, const QSqlDatabase &database, const QString &statement = QString::fromLatin1(allScans));
