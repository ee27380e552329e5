// Writes statements over the demo network, runs them on SQLite and on PostgreSQL and compares the rows.
//
// Usage: fuzz_differential COUNT [SEED]
// Every statement that the two do not agree on is printed with what came of it, and its seed: COUNT 1 and that seed repeat it.

#include "statement_writer.h"

#include "demo/generator.h"
#include "tests/engine/postgresql_server.h"
#include "tests/engine/support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace {

using namespace engine;
using namespace engine::test;

const QueryOptions options { .timeLimit = std::chrono::seconds(5), .rowLimit = 20'000 };
constexpr int mostPrinted = 20;

/// What a value may be at fault for: which of them a database computes, and in which order, is its own affair.
bool isOfValues(const Outcome &outcome)
{
    static constexpr std::string_view signs[] = { "ORA-", "division by zero", "out of range", "超过了规定的时间", "too many rows" };
    return outcome.failed && std::any_of(std::begin(signs), std::end(signs), [&outcome](std::string_view sign) {
        return outcome.message.find(sign) != std::string::npos;
    });
}

enum class Verdict { Same, NotCompared, Different };

Verdict verdictOn(const Outcome &left, const Outcome &right)
{
    if (isOfValues(left) || isOfValues(right))
        return Verdict::NotCompared;
    if (left.failed || right.failed)
        return Verdict::Different;
    if (left.packet->truncated() || right.packet->truncated())
        return Verdict::NotCompared;
    return sortedRows(*left.packet) == sortedRows(*right.packet) ? Verdict::Same : Verdict::Different;
}

void print(const char *database, const Outcome &outcome)
{
    if (outcome.failed) {
        std::printf("  %s: %s\n", database, outcome.message.c_str());
        return;
    }
    const auto rows = sortedRows(*outcome.packet);
    std::printf("  %s: %zu rows\n", database, rows.size());
    for (std::size_t row = 0; row < std::min<std::size_t>(rows.size(), 4); ++row)
        std::printf("    %s\n", rows[row].c_str());
}

} // namespace

int main(int count, char **arguments)
{
    const std::uint64_t statements = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 500;
    const std::uint64_t firstSeed = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;
    demo::Settings settings;
    settings.waybills = 150;
    settings.asOf = *demo::parseMoment("2024-03-05 18:00:00");
    settings.replaces = true;
    const TemporaryDatabase file("");
    settings.path = file.path();
    demo::generate(settings);
    auto &server = PostgresqlServer::instance();
    const std::string database = server.makeDatabase();
    settings.path = server.ownerUrl(database);
    demo::generate(settings);
    const auto sqlite = openEngine(file.url());
    const auto postgresql = openEngine(server.readerUrl(database));
    std::map<Verdict, std::uint64_t> verdicts;
    for (std::uint64_t seed = firstSeed; seed < firstSeed + statements; ++seed) {
        const std::string sql = StatementWriter(seed).statement();
        const Outcome left = outcomeOf(*sqlite, sql, options);
        const Outcome right = outcomeOf(*postgresql, sql, options);
        const Verdict verdict = verdictOn(left, right);
        if (++verdicts[verdict] <= mostPrinted && verdict == Verdict::Different) {
            std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), sql.c_str());
            print("SQLite", left);
            print("PostgreSQL", right);
        }
    }
    std::printf("%llu statements: %llu the same, %llu not compared, %llu different\n", static_cast<unsigned long long>(statements),
        static_cast<unsigned long long>(verdicts[Verdict::Same]), static_cast<unsigned long long>(verdicts[Verdict::NotCompared]),
        static_cast<unsigned long long>(verdicts[Verdict::Different]));
    return verdicts[Verdict::Different] > 0 || verdicts[Verdict::Same] < statements / 2;
}
