#include "bench/scan_rows.h"

#include "engine/pool/open_engine.h"

#include <QSqlError>

#include <sqlite3.h>

#include <cstdio>
#include <functional>

using namespace platform;

namespace {

class EngineChannel : public StatementChannel {
public:
    explicit EngineChannel(const QString &path)
        : m_engine(engine::openEngine("sqlite:" + path.toStdString()))
    {
    }
    packet::PacketPtr run(const std::string &sql, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    {
        engine::QueryOptions options;
        options.stop = std::move(stop);
        options.progress = progress;
        return m_engine->query(sql, options);
    }

private:
    std::unique_ptr<engine::Engine> m_engine;
};

} // namespace

void failWith(const QString &message)
{
    std::fprintf(stderr, "%s\n", qPrintable(message));
    std::exit(1);
}

Database::Database(const QString &path)
{
    constexpr int mode = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.toUtf8().constData(), &m_handle, mode, nullptr) != SQLITE_OK)
        failWith(QString::fromUtf8(sqlite3_errmsg(m_handle)));
}

Database::~Database() { sqlite3_close(m_handle); }

void Database::run(const QString &sql)
{
    if (sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        failWith(QString::fromUtf8(sqlite3_errmsg(m_handle)));
}

void generateScans(const QString &path)
{
    Database database(path);
    database.run(QString::fromStdString(scanTableScript(scanCount)));
}

std::shared_ptr<StatementChannel> engineChannel(const QString &path) { return std::make_shared<EngineChannel>(path); }

void load(TClientDataSetEx &dataSet, TSocketConnectionEx &connection)
{
    dataSet.setRemoteServer(&connection);
    dataSet.setCommandText(QString::fromLatin1(allScans));
    dataSet.open();
    if (dataSet.recordCount() != scanCount)
        failWith(QStringLiteral("loaded %1 rows").arg(dataSet.recordCount()));
}

void load(QSqlQueryModel &model, const QSqlDatabase &database, const QString &statement)
{
    model.setQuery(statement, database);
    while (model.canFetchMore())
        model.fetchMore();
    if (model.rowCount() != scanCount)
        failWith(model.lastError().text());
}

QSqlDatabase openForModel(const QString &path)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(path);
    if (!database.open())
        failWith(database.lastError().text());
    return database;
}
