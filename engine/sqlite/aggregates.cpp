#include "engine/sqlite/function_support.h"

#include <cmath>
#include <memory>

namespace engine::functions {

namespace {

using packet::Decimal;
using packet::Int128;

/// An exact sum. What has at most four digits after the point, and that is nearly everything, is added in 128 bits.
class Sum {
public:
    void add(sqlite3_value *value)
    {
        ++m_count;
        if (sqlite3_value_type(value) == SQLITE_INTEGER)
            m_units += Int128(sqlite3_value_int64(value)) * unit;
        else if (sqlite3_value_type(value) != SQLITE_FLOAT || !addShort(sqlite3_value_double(value)))
            m_rest = m_rest + numberOf(value);
    }
    std::int64_t count() const { return m_count; }
    Decimal total() const { return m_rest.units == 0 ? Decimal { m_units, digits } : Decimal { m_units, digits } + m_rest; }

private:
    static constexpr int digits = 4;
    static constexpr std::int64_t unit = 10000;

    bool addShort(double value)
    {
        const double moved = value * double(unit);
        if (!(std::fabs(moved) < 1e15))
            return false;
        const auto units = std::int64_t(moved + (moved < 0 ? -0.5 : 0.5));
        if (double(units) / double(unit) != value)
            return false;
        m_units += units;
        return true;
    }

    Int128 m_units = 0;
    Decimal m_rest {};
    std::int64_t m_count = 0;
};

/// The state of a group: made on its first row, handed over to the final call, which SQLite never leaves out.
template <class State>
State &stateOf(sqlite3_context *context)
{
    auto **const state = static_cast<State **>(sqlite3_aggregate_context(context, sizeof(State *)));
    if (!state)
        throw std::bad_alloc();
    if (!*state)
        *state = new State;
    return **state;
}

template <class State>
std::unique_ptr<State> takeState(sqlite3_context *context)
{
    auto **const state = static_cast<State **>(sqlite3_aggregate_context(context, 0));
    return std::unique_ptr<State>(state ? *state : nullptr);
}

void sumStep(sqlite3_context *context, int, sqlite3_value **values)
{
    if (!isNull(values[0]))
        guarded(context, [&] { stateOf<Sum>(context).add(values[0]); });
}

void sumFinal(sqlite3_context *context)
{
    guarded(context, [&] {
        if (const auto sum = takeState<Sum>(context))
            setNumber(context, sum->total());
    });
}

void averageFinal(sqlite3_context *context)
{
    guarded(context, [&] {
        if (const auto sum = takeState<Sum>(context))
            sqlite3_result_double(context, sum->total().toDouble() / double(sum->count()));
    });
}

/// The only value of a scalar subquery.
struct Single {
    ~Single() { sqlite3_value_free(value); }
    sqlite3_value *value = nullptr;
};

void singleStep(sqlite3_context *context, int, sqlite3_value **values)
{
    guarded(context, [&] {
        auto &single = stateOf<Single>(context);
        if (single.value)
            throw OracleError("ORA-01427: 单行子查询返回多个行");
        single.value = sqlite3_value_dup(values[0]);
    });
}

void singleFinal(sqlite3_context *context)
{
    if (const auto single = takeState<Single>(context))
        sqlite3_result_value(context, single->value);
}

using Step = void (*)(sqlite3_context *, int, sqlite3_value **);
using Final = void (*)(sqlite3_context *);

void addAggregate(sqlite3 *database, const char *name, Step step, Final final)
{
    sqlite3_create_function_v2(
        database, name, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, nullptr, step, final, nullptr);
}

} // namespace

void addAggregates(sqlite3 *database)
{
    addAggregate(database, "sum", sumStep, sumFinal);
    addAggregate(database, "avg", sumStep, averageFinal);
    addAggregate(database, "oracle_single", singleStep, singleFinal);
}

} // namespace engine::functions
