// Loads a million arrival scans from SQLite through the engine into a dataset, beside reading them bare and beside
// QSqlQueryModel; then compares how much memory the two hold.

#include "bench/pairs.h"
#include "bench/resident_memory.h"
#include "engine/engine.h"
#include "platform/dataset/client_data_set.h"
#include "platform/remote/socket_connection.h"

#include <QApplication>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQueryModel>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <cstdio>

namespace {

constexpr int rowCount = 1'000'000;
constexpr int rounds = 7;
constexpr auto statement = "select * from TAB_SCAN_COME";

constexpr auto createTable = R"(
create table TAB_SCAN_COME (
    BILL_CODE VARCHAR2(20) NOT NULL, SCAN_TYPE VARCHAR2(20) NOT NULL, SCAN_SITE VARCHAR2(50) NOT NULL, SCAN_DATE DATE NOT NULL,
    SCAN_MAN VARCHAR2(30), SCAN_MAN_CODE VARCHAR2(20), REGISTER_DATE DATE, DISPATCH_OR_SEND_MAN VARCHAR2(30), SEND_SITE VARCHAR2(50),
    PRE_OR_NEXT_STATION VARCHAR2(50), DISPATCH_SITE VARCHAR2(50), PIECE NUMBER(6), WEIGHT NUMBER(10,2), CLASS VARCHAR2(20),
    GOODS_TYPE VARCHAR2(20), FAST_TYPE VARCHAR2(20), TRANSFER_OR_DISPATCH_FEE NUMBER(12,2), OTHER_FEE NUMBER(12,2),
    NET_MANAGE_FEE NUMBER(12,2), CUSTOMER_NAME VARCHAR2(100), TRUCK_WAY VARCHAR2(50), REMARK VARCHAR2(200)))";

// Products of the row number and primes stand in for chance: the same rows every time.
constexpr auto insertRows = R"(
insert into TAB_SCAN_COME
with recursive n(i) as (select 1 union all select i + 1 from n where i < %1)
select '77' || (10000000000 + i * 37),
       '到件',
       '站点' || (i * 7919 % 400) || '部',
       datetime(1709600000 + i * 3, 'unixepoch'),
       '扫描员' || (i * 104729 % 1500),
       printf('%05d', i * 104729 % 1500),
       datetime(1709600040 + i * 3, 'unixepoch'),
       case when i * 31 % 10 < 6 then '派件员' || (i * 1299709 % 2000) end,
       '站点' || (i * 15485863 % 400) || '部',
       '中转' || (i * 6700417 % 40) || '场',
       '站点' || (i * 2750159 % 400) || '部',
       1 + (i * 17 % 20 = 0),
       (i * 7907 % 3000 + 10) / 100.0,
       '班次' || (i * 13 % 6),
       case i * 11 % 3 when 0 then '文件' when 1 then '包裹' else '易碎品' end,
       case i * 19 % 4 when 0 then '特快' else '标准' end,
       (i * 6101 % 2500) / 100.0,
       case when i * 23 % 5 = 0 then (i * 4099 % 900) / 100.0 end,
       (i * 3571 % 150) / 100.0,
       case when i * 29 % 3 = 0 then '客户' || (i * 32452843 % 3000) || '有限公司' end,
       '线路' || (i * 5 % 60),
       case when i * 41 % 50 = 0 then '外包装破损' end
from n)";

[[noreturn]] void fail(const QString &message)
{
    std::fprintf(stderr, "%s\n", qPrintable(message));
    std::exit(1);
}

class Database {
public:
    explicit Database(const QString &path)
    {
        constexpr int mode = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
        if (sqlite3_open_v2(path.toUtf8().constData(), &m_handle, mode, nullptr) != SQLITE_OK)
            fail(QString::fromUtf8(sqlite3_errmsg(m_handle)));
    }
    ~Database() { sqlite3_close(m_handle); }
    Database(const Database &) = delete;

    void run(const QString &sql)
    {
        if (sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
            fail(QString::fromUtf8(sqlite3_errmsg(m_handle)));
    }
    sqlite3 *handle() const { return m_handle; }

private:
    sqlite3 *m_handle = nullptr;
};

void generate(const QString &path)
{
    Database database(path);
    database.run(QString::fromUtf8(createTable));
    database.run(QString::fromUtf8(insertRows).arg(rowCount));
}

/// Steps through the rows and reads every value, which is the least that any reader does.
void readBare(const Database &database)
{
    sqlite3_stmt *query = nullptr;
    sqlite3_prepare_v2(database.handle(), statement, -1, &query, nullptr);
    const int columns = sqlite3_column_count(query);
    volatile qint64 sink = 0;
    int rows = 0;
    for (; sqlite3_step(query) == SQLITE_ROW; ++rows) {
        for (int column = 0; column < columns; ++column) {
            sqlite3_value *const value = sqlite3_column_value(query, column);
            switch (sqlite3_value_type(value)) {
            case SQLITE_INTEGER:
                sink = sink + sqlite3_value_int64(value);
                break;
            case SQLITE_FLOAT:
                sink = sink + qint64(sqlite3_value_double(value));
                break;
            case SQLITE_TEXT:
                sink = sink + *static_cast<const char *>(sqlite3_value_blob(value)) + sqlite3_value_bytes(value);
                break;
            default:
                break;
            }
        }
    }
    sqlite3_finalize(query);
    if (rows != rowCount)
        fail(QStringLiteral("read %1 rows").arg(rows));
}

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

void load(TClientDataSetEx &dataSet, TSocketConnectionEx &connection)
{
    dataSet.setRemoteServer(&connection);
    dataSet.setCommandText(QString::fromLatin1(statement));
    dataSet.open();
    if (dataSet.recordCount() != rowCount)
        fail(QStringLiteral("loaded %1 rows").arg(dataSet.recordCount()));
}

void load(QSqlQueryModel &model, const QSqlDatabase &database)
{
    model.setQuery(QString::fromLatin1(statement), database);
    while (model.canFetchMore())
        model.fetchMore();
    if (model.rowCount() != rowCount)
        fail(model.lastError().text());
}

QSqlDatabase openForModel(const QString &path)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(path);
    if (!database.open())
        fail(database.lastError().text());
    return database;
}

void compareTimes(const QString &path)
{
    Database bare(path);
    bare.run(QStringLiteral("pragma cache_size=-65536")); // as the engine has it
    TSocketConnectionEx connection;
    connection.setChannel(std::make_shared<EngineChannel>(path));
    const QSqlDatabase database = openForModel(path);
    std::vector<Side> sides {
        { "bare", [&] { readBare(bare); } },
        { "dataset",
            [&] {
                TClientDataSetEx dataSet;
                load(dataSet, connection);
            } },
        { "QSqlQueryModel",
            [&] {
                QSqlQueryModel model;
                load(model, database);
            } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(sides[1], sides[0], 1.3);
    printRatio(sides[1], sides[2], 1.0 / 3);
}

/// What one way of holding the rows costs, measured in a process of its own: this program, called with the way's name.
int printMemory(const QString &way, const QString &path)
{
    TSocketConnectionEx connection;
    TClientDataSetEx dataSet;
    QSqlQueryModel model;
    const qint64 before = residentBytes();
    if (way == u"dataset") {
        connection.setChannel(std::make_shared<EngineChannel>(path));
        load(dataSet, connection);
        connection.setChannel(nullptr);
    } else {
        load(model, openForModel(path));
    }
    std::printf("%lld\n", static_cast<long long>(residentBytes() - before));
    return 0;
}

double memoryOf(const QString &way, const QString &path)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), { way, path });
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail(QString::fromUtf8(process.readAllStandardError()));
    return process.readAllStandardOutput().trimmed().toDouble();
}

void compareMemory(const QString &path)
{
    const double dataSet = memoryOf(QStringLiteral("dataset"), path);
    const double model = memoryOf(QStringLiteral("model"), path);
    std::printf("memory: dataset %.0f bytes a row, QSqlQueryModel %.0f bytes a row; ratio %.3f, goal 0.250: %s\n", dataSet / rowCount,
        model / rowCount, dataSet / model, dataSet <= model / 4 ? "reached" : "missed");
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 3)
        return printMemory(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("scans.db"));
    generate(path);
    compareTimes(path);
    compareMemory(path);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
