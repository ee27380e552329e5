// Fetches all arrival scans of a demo network from PostgreSQL through the engine, beside libpq alone.
//
//     postgresql_benchmark postgresql://owner@host/parcels

#include "bench/pairs.h"
#include "engine/pool/open_engine.h"

#include <libpq-fe.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int rounds = 7;
constexpr auto allScans = "select * from TAB_SCAN_COME";

[[noreturn]] void failWith(const std::string &message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

/// Touches every value, which is the least that any reader does.
std::size_t touch(const PGresult *result)
{
    volatile std::size_t sink = 0;
    for (int row = 0; row < PQntuples(result); ++row) {
        for (int column = 0; column < PQnfields(result); ++column)
            sink = sink + std::size_t(PQgetlength(result, row, column)) + std::size_t(*PQgetvalue(result, row, column));
    }
    return std::size_t(PQntuples(result));
}

/// One row after the other in binary form: bounded memory.
std::size_t fetchRows(PGconn *connection)
{
    std::size_t rows = 0;
    PQsendQueryParams(connection, allScans, 0, nullptr, nullptr, nullptr, nullptr, 1);
    PQsetSingleRowMode(connection);
    while (PGresult *const result = PQgetResult(connection)) {
        rows += touch(result);
        PQclear(result);
    }
    return rows;
}

/// The whole result at once as text, the way of most programs.
std::size_t fetchWhole(PGconn *connection)
{
    PGresult *const result = PQexec(connection, allScans);
    const std::size_t rows = touch(result);
    PQclear(result);
    return rows;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2)
        failWith("postgresql_benchmark postgresql://...");
    const std::unique_ptr<PGconn, void (*)(PGconn *)> bare(PQconnectdb(argv[1]), PQfinish);
    const std::size_t expected = fetchRows(bare.get());
    if (expected == 0)
        failWith(PQerrorMessage(bare.get()));
    std::printf("%zu rows\n", expected);
    const auto check = [expected](std::size_t rows) {
        if (rows != expected)
            failWith("read " + std::to_string(rows) + " rows");
    };
    const auto native = engine::openEngine(argv[1]);
    std::vector<Side> sides {
        { "libpq, row by row", [&] { check(fetchRows(bare.get())); } },
        { "engine", [&] { check(native->query(allScans)->rowCount()); } },
        { "libpq, whole", [&] { check(fetchWhole(bare.get())); } },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.0f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(sides[1], sides[0], 1.15);
    printRatio(sides[1], sides[2], 1.0);
    if (!machineIsQuiet())
        std::puts("machine busy: no verdict");
}
