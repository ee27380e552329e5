// Reads a statement with 800 waybill numbers through the gate and the dialect, beside what SQLite takes to prepare what
// comes out; the same with half of the numbers, to see that the time grows with the length alone; and for readers to whom rules
// apply, with few sites and with hundreds.

#include "bench/pairs.h"
#include "engine/dialect/dialect.h"
#include "engine/gate/gate.h"
#include "engine/sqlite/oracle_functions.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int rounds = 15;
constexpr int repetitions = 200; ///< within a round

constexpr auto createTables = R"(
create table TAB_SCAN_COME (BILL_CODE, SUB_BILL_CODE, OWNER_BAG_NO, SCAN_TYPE, SCAN_SITE, SCAN_DATE DATE, SCAN_MAN, PIECE, WEIGHT, CLASS, DISPATCH_SITE);
create table TAB_BILL (BILL_CODE, TOPAYMENT NUMBER(12,2), SEND_SITE, DISPATCH_SITE);
create index TAB_SCAN_COME_I on TAB_SCAN_COME (BILL_CODE);
create index TAB_BILL_P on TAB_BILL (BILL_CODE))";

std::string statement(int numbers)
{
    std::string list;
    for (int number = 0; number < numbers; ++number)
        list += (number > 0 ? ",'" : "'") + std::to_string(7700000000 + number * 37) + "'";
    return "select /*+index(a,TAB_SCAN_COME_I)*/a.bill_code,a.SUB_BILL_CODE,a.OWNER_BAG_NO,a.SCAN_TYPE,a.SCAN_SITE,a.SCAN_DATE,a.SCAN_MAN,"
           "a.PIECE,a.WEIGHT,a.CLASS,nvl(b.TOPAYMENT,0) as TOPAYMENT from TAB_SCAN_COME a left join tab_bill b on a.bill_code=b.bill_code "
           "where a.scan_date between to_date('2024-03-04 12:00:00','yyyy-mm-dd hh24:mi:ss') and "
           "to_date('2024-03-05 11:59:59','yyyy-mm-dd hh24:mi:ss') and a.bill_code in ("
        + list + ") and nvl(a.WEIGHT,0) >='5' order by a.bill_code";
}

engine::Reader readerOf(int sites)
{
    std::vector<std::string> names;
    for (int number = 0; number < sites; ++number)
        names.push_back("北京网点" + std::to_string(number));
    return { names, "北京朝阳", "10001" };
}

void prepare(sqlite3 *database, const std::string &text)
{
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(database, text.c_str(), int(text.size()) + 1, &prepared, nullptr) != SQLITE_OK) {
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(database));
        std::exit(1);
    }
    sqlite3_finalize(prepared);
}

} // namespace

int main()
{
    sqlite3 *opened = nullptr;
    sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
    sqlite3_exec(opened, createTables, nullptr, nullptr, nullptr);
    engine::registerOracleFunctions(opened);

    const engine::gate::Schema schema {
        { "TAB_SCAN_COME",
            { "BILL_CODE", "SUB_BILL_CODE", "OWNER_BAG_NO", "SCAN_TYPE", "SCAN_SITE", "SCAN_DATE", "SCAN_MAN", "PIECE", "WEIGHT", "CLASS",
                "DISPATCH_SITE" } },
        { "TAB_BILL", { "BILL_CODE", "TOPAYMENT", "SEND_SITE", "DISPATCH_SITE" } },
    };
    const engine::gate::RowRules rules(
        {
            { .table = "TAB_SCAN_COME", .condition = "scan_site in (:sites) or dispatch_site in (:sites)" },
            { .table = "TAB_BILL", .condition = "send_site in (:sites) or dispatch_site in (:sites)" },
        },
        schema);
    const std::string whole = statement(800);
    const std::string half = statement(400);
    const auto read = [&schema](const std::string &sql) { return engine::sqliteText(sql, engine::gate::check(sql, schema)); };
    const auto readFor = [&](const engine::Reader &reader) {
        const engine::gate::Reading reading(rules, reader);
        return engine::sqliteText(whole, engine::gate::check(whole, schema, &reading), &reading);
    };
    const engine::Reader region = readerOf(40);
    const engine::Reader network = readerOf(500);
    const std::string written = read(whole);
    const std::string filtered = readFor(network);
    std::size_t bytes = 0; // keeps the work from being left out
    const auto repeat = [](auto work) {
        return [work] {
            for (int repetition = 0; repetition < repetitions; ++repetition)
                work();
        };
    };
    std::vector<Side> sides {
        { "prepare", repeat([&] { prepare(opened, written); }) },
        { "gate and dialect", repeat([&] { bytes += read(whole).size(); }) },
        { "gate and dialect, half the numbers", repeat([&] { bytes += read(half).size(); }) },
        { "gate and dialect, 40 sites", repeat([&] { bytes += readFor(region).size(); }) },
        { "gate and dialect, 500 sites", repeat([&] { bytes += readFor(network).size(); }) },
        { "prepare, 500 sites", repeat([&] { prepare(opened, filtered); }) },
    };
    std::printf("%zu bytes; prepared as %zu bytes\n", whole.size(), written.size());
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%-36s %7.1f us\n", side.name.c_str(), median(side.milliseconds) * 1000 / repetitions);
    printRatio(sides[1], sides[0], 1.0);
    printRatio(sides[1], sides[2], 1.15 * double(whole.size()) / double(half.size()));
    printRatio(sides[3], sides[1], 1.3);
    printRatio(sides[4], sides[5], 1.0);
    if (!machineIsQuiet())
        std::puts("machine busy: no verdict");
    return bytes > 0 ? 0 : 1;
}
