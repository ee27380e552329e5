#include "demo/fill_postgresql.h"

#include "demo/postgresql_schema.h"
#include "demo/postgresql_staging.h"
#include "demo/production.h"

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

namespace demo {

namespace {

/// As many sessions as there are processors. Throws what the first of them threw.
void writeShipments(const PostgresqlStaging &staging, Production &production)
{
    constexpr unsigned most = 16;
    const auto write = [&] {
        try {
            PostgresqlDatabase database = staging.connect();
            database.run("begin");
            Writer writer(database);
            production.write(writer);
            database.run("commit");
        } catch (...) {
            production.stop();
            throw;
        }
    };
    std::vector<std::future<void>> sessions(std::clamp(std::thread::hardware_concurrency(), 1U, most));
    for (auto &session : sessions)
        session = std::async(std::launch::async, write);
    for (auto &session : sessions)
        session.wait();
    for (auto &session : sessions)
        session.get();
}

} // namespace

void fillPostgresql(const Settings &settings, const Progress &progress)
{
    const auto tables = tableScript();
    PostgresqlStaging staging(settings.path, tablesOf(tables), settings.replaces);
    PostgresqlDatabase database = staging.connect();
    database.run(settings.isMonthly ? monthlyTables(tables, firstDayOf(settings), settings.asOf) : postgresqlTables(tables));
    const Network network(settings.seed);
    Writer writer(database);
    database.run("begin");
    writer.writeNetwork(network);
    database.run("commit");
    Production production(settings, network, progress);
    writeShipments(staging, production);
    progress("汇总签收", 0, 0);
    writer.writeSums();
    progress("建立索引", 0, 0);
    database.define(indexScript());
    progress("统计索引", 0, 0);
    staging.settle();
    staging.publish();
}

} // namespace demo
