#include "tests/simulation/statement_plan.h"

#include <charconv>

namespace simulation {

namespace {

/// Mixes the bits of a number (splitmix64, Steele, Lea and Flood 2014).
std::uint64_t mixed(std::uint64_t number)
{
    number += 0x9E3779B97F4A7C15U;
    number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31);
}

std::uint64_t numberAt(const packet::Packet &rows, std::size_t column, std::size_t row)
{
    std::string text;
    rows.appendText(column, row, text);
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

Random randomFor(std::uint64_t seed, std::uint64_t first, std::uint64_t second, std::uint64_t third)
{
    return Random(mixed(mixed(mixed(mixed(seed) + first) + second) + third));
}

std::uint64_t pick(Random &random, std::uint64_t least, std::uint64_t most) { return least + random() % (most - least + 1); }

bool happens(Random &random, double probability) { return double(random() % 1'000'000) < probability * 1e6; }

std::string StatementPlan::sql() const
{
    const std::string tagged = "'" + tag + "' tag from NUMBERS a, NUMBERS b";
    switch (nature) {
    case Nature::Forbidden:
        return "select " + tag + " from NUMBERS; delete from NUMBERS";
    case Nature::Failing:
        return "select to_number(case when a.n=9 and b.n=990 then 'x' else b.text end) n, " + tagged + " where a.n<=9 and b.n<>900";
    case Nature::Endless:
        return "select count(*) n, " + tagged + ", NUMBERS c, NUMBERS d where a.n+b.n+c.n+d.n<0";
    case Nature::TooLarge:
    case Nature::Rows:
        break;
    }
    return "select a.n, b.text, " + tagged + " where a.n<=" + std::to_string(first) + " and b.n<=" + std::to_string(second);
}

std::string StatementPlan::faultOf(const packet::Packet &rows) const
{
    if (nature != Nature::Rows)
        return "rows of a statement that has none";
    if (rows.rowCount() != first * second)
        return std::to_string(rows.rowCount()) + " rows in place of " + std::to_string(first * second);
    std::uint64_t sum = 0;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        std::string ownTag;
        rows.appendText(2, row, ownTag);
        if (ownTag != tag)
            return "a row of " + ownTag;
        sum += mixed(numberAt(rows, 0, row) * 1000 + numberAt(rows, 1, row));
    }
    for (std::uint64_t a = 1; a <= first; ++a)
        for (std::uint64_t b = 1; b <= second; ++b)
            sum -= mixed(a * 1000 + b);
    return sum == 0 ? "" : "other rows";
}

StatementPlan planStatement(std::uint64_t seed, int client, int number)
{
    using Nature = StatementPlan::Nature;
    Random random = randomFor(seed, 1, std::uint64_t(client), std::uint64_t(number));
    StatementPlan plan { .tag = "s" + std::to_string(seed) + "c" + std::to_string(client) + "n" + std::to_string(number) + "e" };
    const std::uint64_t kind = pick(random, 1, 100);
    plan.nature = kind <= 88 ? Nature::Rows
        : kind <= 91         ? Nature::Forbidden
        : kind <= 95         ? Nature::Failing
        : kind <= 96         ? Nature::Endless
                             : Nature::TooLarge;
    plan.first = kind <= 60 ? 1 : kind <= 80 ? pick(random, 1, 3) : pick(random, 3, 6);
    plan.second = kind <= 60 ? pick(random, 0, 20) : pick(random, 1, 799);
    if (plan.nature == Nature::TooLarge) {
        plan.first = 9;
        plan.second = 799;
    }
    if (plan.nature == Nature::Endless ? happens(random, 0.7) : happens(random, 0.04))
        plan.cancelAfter = std::chrono::milliseconds(pick(random, 0, plan.nature == Nature::Endless ? 80 : 8));
    return plan;
}

} // namespace simulation
