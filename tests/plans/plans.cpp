// Explains and runs every statement of every screen on two networks, as the engine writes it for their database, and names those
// that read a table of the network from end to end, or whose work grows faster than what comes of it:
//
//     plans sqlite:small.db sqlite:large.db            plans postgresql://.../small postgresql://.../large
//
// The networks are kelvara-demo's, made with --as-of "2026-03-15 16:30:00". KELVARA_PLANS=all prints every plan.

#include "tests/plans/comparison.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

using engine::test::Compared;

namespace {

/// The slowest run of a screen comes first in its line; returns whether the statement is named.
bool print(const Compared &compared, double growth, bool printsAll)
{
    const bool isNamed = !compared.error.empty() || compared.readsWholeTables() || compared.growsTooFast(growth);
    std::printf("%-28s %8lld %8lld rows %10lld %10lld work %8.1f %8.1f ms%s%s%s\n", compared.statement.screen.c_str(),
        static_cast<long long>(compared.small.rows), static_cast<long long>(compared.large.rows),
        static_cast<long long>(compared.small.work), static_cast<long long>(compared.large.work), compared.small.milliseconds,
        compared.large.milliseconds, compared.readsWholeTables() ? " WHOLE TABLE" : "", compared.growsTooFast(growth) ? " GROWS" : "",
        compared.error.empty() ? "" : " ERROR");
    if (isNamed || printsAll) {
        std::printf("    %s\n%s%s", compared.statement.sql.c_str(), compared.error.c_str(), compared.large.text.c_str());
        for (const std::string &table : compared.large.wholeTables)
            std::printf("    whole: %s\n", table.c_str());
    }
    return isNamed;
}

} // namespace

int main(int argc, char **argv)
try {
    if (argc != 3) {
        std::fputs("usage: plans <address of a small network> <address of a large network>\n", stderr);
        return 2;
    }
    const char *const wanted = std::getenv("KELVARA_PLANS");
    const double growth = engine::test::growthOfDay(argv[1], argv[2]);
    std::printf("the day has %.2f times as many scans\n", growth);
    int named = 0;
    const auto statements = engine::test::compare(argv[1], argv[2], engine::test::Sequential::Allowed);
    for (const Compared &compared : statements)
        named += print(compared, growth, wanted != nullptr);
    std::printf("%d of %zu statements named\n", named, statements.size());
    return named > 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
