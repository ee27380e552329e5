// Tries to read the rows of others. Statements that go around are run for a reader on the whole network, and without any rule on a
// network from which everything that is not the reader's has been deleted: their rows must be the same.
//
// Usage: fuzz_row_rules COUNT [SEED] [sqlite|postgresql]
// Every statement whose rows differ is printed with its seed: COUNT 1 and that seed repeat it.

#include "evasion_writer.h"

#include "demo/generator.h"
#include "tests/engine/postgresql_server.h"
#include "tests/engine/support.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

namespace {

using namespace engine;
using namespace engine::test;

constexpr std::string_view canary = "CANARY";
constexpr int mostPrinted = 20;

/// A rule and, said once more in plain SQL, which rows it leaves and what it makes of hidden columns.
struct Protected {
    TableRule rule;
    std::string left {};
    std::string masks {};
};

std::vector<Protected> protectedTables()
{
    const std::string bills = " in (select bill_code from KEPT_BILL)";
    const std::string come = "scan_site in ('北京','北京朝阳') or dispatch_site in ('北京','北京朝阳')";
    return {
        { { .table = "TAB_SCAN_COME", .condition = "scan_site in (:sites) or dispatch_site in (:sites)" }, come },
        { { .table = "TAB_SIGN",
              .condition = "record_site in (:sites) or rec_site=:site",
              .hidden = { "sign_man", "DISPATCH_FEE", "RECORD_DATE" } },
            "record_site in ('北京','北京朝阳') or rec_site='北京朝阳'", "sign_man='***',dispatch_fee=null,record_date=null" },
        { { .table = "TAB_PROBLEM",
              .condition = "register_site=:site or exists (select 1 from TAB_BILL b where b.bill_code=TAB_PROBLEM.bill_code and "
                           "b.send_site in (:sites))" },
            "register_site='北京朝阳' or bill_code" + bills },
        { { .table = "TAB_SITE", .condition = "site_name in (:sites) or superior_site in (:sites)" },
            "site_name in ('北京','北京朝阳') or superior_site in ('北京','北京朝阳')" },
        { { .table = "TAB_SITE_BASIC", .condition = "nvl(car_name,'-')<>:employee and site_name like '北京%'" }, "site_name like '北京%'" },
    };
}

const auto reader = std::make_shared<const Reader>(std::vector<std::string> { "北京", "北京朝阳" }, "北京朝阳", "E'1");

/// What a network without the rows of others is made of; in the whole one these rows carry a sign.
std::string changes(bool isWhole)
{
    std::string sql = "create table KEPT_BILL as select bill_code from TAB_BILL where send_site in ('北京','北京朝阳');";
    for (const Protected &table : protectedTables()) {
        const std::string others = table.rule.table + " where (" + table.left + ") is not true;";
        if (!isWhole)
            sql += "delete from " + others + (table.masks.empty() ? "" : "update " + table.rule.table + " set " + table.masks + ";");
        else if (table.rule.table != "TAB_SITE" && table.rule.table != "TAB_SITE_BASIC")
            sql += "update " + table.rule.table + " set remark='" + std::string(canary) + "' where (" + table.left + ") is not true;";
    }
    return sql + "drop table KEPT_BILL;";
}

void runOn(const std::filesystem::path &file, const std::string &sql)
{
    sqlite3 *database = nullptr;
    char *message = nullptr;
    sqlite3_open(file.c_str(), &database);
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        std::fprintf(stderr, "%s\n", message);
        std::exit(2);
    }
    sqlite3_close(database);
}

/// The whole network, and what the reader may see of it.
struct Networks {
    std::unique_ptr<Engine> whole;
    std::unique_ptr<Engine> left;
};

EngineOptions ruled()
{
    EngineOptions options;
    for (const Protected &table : protectedTables())
        options.rules.push_back(table.rule);
    return options;
}

demo::Settings settingsFor(const std::string &path)
{
    demo::Settings settings;
    settings.waybills = 150;
    settings.asOf = *demo::parseMoment("2024-03-05 18:00:00");
    settings.replaces = true;
    settings.path = path;
    return settings;
}

Networks sqliteNetworks(const TemporaryDatabase &whole, const TemporaryDatabase &left)
{
    for (const TemporaryDatabase *const file : { &whole, &left }) {
        demo::generate(settingsFor(file->path()));
        runOn(file->path(), changes(file == &whole));
    }
    return { openEngine(whole.url(), ruled()), openEngine(left.url(), ruled()) };
}

Networks postgresqlNetworks()
{
    auto &server = PostgresqlServer::instance();
    std::string urls[2];
    for (const bool isWhole : { false, true }) {
        const std::string name = server.makeDatabase();
        demo::generate(settingsFor(server.ownerUrl(name)));
        server.run(name, changes(isWhole));
        urls[isWhole] = server.readerUrl(name);
    }
    return { openEngine(urls[1], ruled()), openEngine(urls[0], ruled()) };
}

enum class Verdict { Same, BothFail, NotCompared, Different };

Verdict compare(const Outcome &seen, const Outcome &expected)
{
    const auto isLate = [](const Outcome &outcome) { return outcome.failed && outcome.failure == Failure::TimeLimit; };
    if (isLate(seen) || isLate(expected))
        return Verdict::NotCompared;
    if (seen.failed || expected.failed)
        return seen.failed && expected.failed ? Verdict::BothFail : Verdict::Different;
    if (seen.packet->truncated() || expected.packet->truncated())
        return Verdict::NotCompared;
    return sortedRows(*seen.packet) == sortedRows(*expected.packet) ? Verdict::Same : Verdict::Different;
}

bool showsCanary(const Outcome &outcome)
{
    if (outcome.failed)
        return outcome.message.find(canary) != std::string::npos;
    const auto rows = sortedRows(*outcome.packet);
    return std::any_of(rows.begin(), rows.end(), [](const std::string &row) { return row.find(canary) != std::string::npos; });
}

/// `failures` tells what the two said when they failed.
Verdict verdictOn(const Networks &networks, const std::string &sql, std::string &failures)
{
    const QueryOptions plain { .timeLimit = std::chrono::seconds(60), .rowLimit = 20'000 };
    QueryOptions asReader = plain;
    asReader.reader = reader;
    const Outcome seen = outcomeOf(*networks.whole, sql, asReader);
    if (showsCanary(seen))
        return Verdict::Different;
    const Outcome expected = outcomeOf(*networks.left, sql, plain);
    const Verdict verdict = compare(seen, expected);
    failures = seen.message + " / " + expected.message;
    if (verdict != Verdict::Different || (!seen.failed && !expected.failed))
        return verdict;
    // Which values are computed, and so whether one fails, depends on the order of conditions: then let rules stand on both sides.
    return compare(seen, outcomeOf(*networks.left, sql, asReader)) == Verdict::Different ? verdict : Verdict::NotCompared;
}

} // namespace

int main(int count, char **arguments)
{
    const std::uint64_t statements = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 500;
    const std::uint64_t firstSeed = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;
    const bool onPostgresql = count > 3 && std::strcmp(arguments[3], "postgresql") == 0;
    const TemporaryDatabase whole("");
    const TemporaryDatabase left("");
    const Networks networks = onPostgresql ? postgresqlNetworks() : sqliteNetworks(whole, left);
    std::map<Verdict, std::uint64_t> verdicts;
    std::set<std::string> ways;
    for (std::uint64_t seed = firstSeed; seed < firstSeed + statements; ++seed) {
        EvasionWriter writer(seed);
        const std::string sql = writer.evasion();
        ways.insert(writer.ways().begin(), writer.ways().end());
        std::string failures;
        const Verdict verdict = verdictOn(networks, sql, failures);
        if (++verdicts[verdict] <= mostPrinted && verdict == Verdict::Different)
            std::printf("seed %llu: %s\n  %s\n", static_cast<unsigned long long>(seed), sql.c_str(), failures.c_str());
    }
    const auto number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
    std::printf("%llu statements in %zu ways: %llu the same, %llu refused alike, %llu not compared, %llu different\n", number(statements),
        ways.size(), number(verdicts[Verdict::Same]), number(verdicts[Verdict::BothFail]), number(verdicts[Verdict::NotCompared]),
        number(verdicts[Verdict::Different]));
    return verdicts[Verdict::Different] > 0 || verdicts[Verdict::Same] < statements / 2;
}
