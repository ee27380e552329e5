#include "engine/postgresql/row_reader.h"

#include "engine/engine.h"
#include "engine/gate/gate.h"
#include "engine/postgresql/binary_value.h"

#include <algorithm>

namespace engine {

namespace {

using packet::Builder;
using packet::ColumnType;

constexpr int widestInt64 = 18; ///< digits
constexpr int modifierHeader = 4; ///< what a type modifier counts before its own value
constexpr std::size_t secondsSize = 19; ///< of "2024-03-05 10:07:59"
constexpr Oid numericType = 1700;
constexpr Oid booleanType = 16;

void addText(Builder &builder, std::size_t column, std::string_view value) { builder.addText(column, value); }

template <class Integer>
void addInteger(Builder &builder, std::size_t column, std::string_view value)
{
    builder.addInteger(column, binary::integerAt<Integer>(value.data()));
}

void addFloat(Builder &builder, std::size_t column, std::string_view value) { builder.addDouble(column, binary::floatAt(value.data())); }
void addDouble(Builder &builder, std::size_t column, std::string_view value) { builder.addDouble(column, binary::doubleAt(value.data())); }

/// Whole numbers arrive as such, so that a computed column without fractions becomes Int64.
void addNumeric(Builder &builder, std::size_t column, std::string_view value)
{
    const packet::Decimal decimal = binary::decimalAt(value.data(), value.size());
    if (decimal.scale == 0 && packet::Int128(std::int64_t(decimal.units)) == decimal.units)
        builder.addInteger(column, std::int64_t(decimal.units));
    else
        builder.addDecimal(column, decimal);
}

void addTimestamp(Builder &builder, std::size_t column, std::string_view value)
{
    builder.addTimestamp(column, binary::timestampSeconds(binary::integerAt<std::int64_t>(value.data())));
}

void addDate(Builder &builder, std::size_t column, std::string_view value)
{
    builder.addTimestamp(column, binary::dateSeconds(binary::integerAt<std::int32_t>(value.data())));
}

void addBoolean(Builder &builder, std::size_t column, std::string_view value) { builder.addInteger(column, value.front() != 0); }

void addPrintedTimestamp(Builder &builder, std::size_t column, std::string_view value)
{
    // Fractions and the time zone are dropped.
    builder.addText(column, value.substr(0, secondsSize));
}

void addPrintedBoolean(Builder &builder, std::size_t column, std::string_view value) { builder.addInteger(column, value == "t"); }

} // namespace

/// How a type of the database is read. `oid` is its number in pg_type, fixed for the types that PostgreSQL comes with.
struct PostgresqlRowReader::Type {
    Oid oid;
    std::optional<ColumnType> type;
    std::size_t size; ///< of its binary form in bytes; 0: any
    Add add;
};

std::span<const PostgresqlRowReader::Type> PostgresqlRowReader::types()
{
    static constexpr Type all[] = {
        { 1043, ColumnType::Text, 0, addText }, // varchar
        { 25, ColumnType::Text, 0, addText }, // text
        { 1114, ColumnType::Timestamp, 8, addTimestamp }, // timestamp
        { numericType, std::nullopt, 0, addNumeric },
        { 23, ColumnType::Int64, 4, addInteger<std::int32_t> },
        { 20, ColumnType::Int64, 8, addInteger<std::int64_t> },
        { 21, ColumnType::Int64, 2, addInteger<std::int16_t> },
        { 701, ColumnType::Float64, 8, addDouble },
        { 700, ColumnType::Float64, 4, addFloat },
        { 1082, ColumnType::Timestamp, 4, addDate }, // date
        { 1042, ColumnType::Text, 0, addText }, // char(n)
        { 19, ColumnType::Text, 0, addText }, // name
        { booleanType, ColumnType::Int64, 1, addBoolean },
    };
    return all;
}

const PostgresqlRowReader::Type *PostgresqlRowReader::typeOf(const PGresult *result, int column)
{
    const auto all = types();
    const auto found = std::find_if(all.begin(), all.end(), [oid = PQftype(result, column)](const Type &type) { return type.oid == oid; });
    return found == all.end() ? nullptr : &*found;
}

bool PostgresqlRowReader::readsBinary(const PGresult *result)
{
    for (int column = 0; column < PQnfields(result); ++column) {
        if (!typeOf(result, column))
            return false;
    }
    return true;
}

Builder::Column PostgresqlRowReader::columnOf(const PGresult *result, int column)
{
    constexpr Oid timestampWithZone = 1184;
    Builder::Column out { gate::upperCase(PQfname(result, column)) };
    if (const Type *const type = typeOf(result, column))
        out.type = type->type;
    else
        out.type = PQftype(result, column) == timestampWithZone ? ColumnType::Timestamp : ColumnType::Text;
    const int modifier = PQfmod(result, column) - modifierHeader;
    if (PQftype(result, column) == numericType && modifier >= 0) {
        out.scale = modifier & 0x7FF;
        out.type = *out.scale == 0 && modifier >> 16 <= widestInt64 ? ColumnType::Int64 : ColumnType::Decimal;
    }
    return out;
}

std::vector<Builder::Column> PostgresqlRowReader::columnsOf(const PGresult *result)
{
    std::vector<Builder::Column> columns;
    for (int column = 0; column < PQnfields(result); ++column)
        columns.push_back(columnOf(result, column));
    return columns;
}

PostgresqlRowReader::PostgresqlRowReader(const PGresult *result, const Job &job)
    : m_builder(columnsOf(result), job.sink)
    , m_bytes(job.options.memoryLimit)
{
    for (int column = 0; column < PQnfields(result); ++column) {
        const bool isTimestamp = columnOf(result, column).type == ColumnType::Timestamp;
        if (PQfformat(result, column) != 0)
            m_add.push_back(typeOf(result, column)->add);
        else if (PQftype(result, column) == booleanType)
            m_add.push_back(addPrintedBoolean);
        else
            m_add.push_back(isTimestamp ? addPrintedTimestamp : addText);
    }
}

void PostgresqlRowReader::addRow(const PGresult *row)
try {
    std::size_t bytes = 0;
    for (std::size_t column = 0; column < m_add.size(); ++column)
        bytes += std::size_t(PQgetlength(row, 0, int(column)));
    m_bytes.addRow(bytes);
    for (std::size_t column = 0; column < m_add.size(); ++column) {
        const auto size = std::size_t(PQgetlength(row, 0, int(column)));
        // What has no bytes is null or the empty text, and that is null too.
        if (size == 0)
            m_builder.addNull(column);
        else
            m_add[column](m_builder, column, { PQgetvalue(row, 0, int(column)), size });
    }
    m_builder.endRow();
} catch (const std::logic_error &error) {
    throw Error(Failure::Database, error.what());
}

packet::PacketPtr PostgresqlRowReader::finish(packet::Extent extent) { return m_builder.finish(extent); }

} // namespace engine
