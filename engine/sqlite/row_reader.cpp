#include "engine/sqlite/row_reader.h"

#include "engine/engine.h"
#include "engine/gate/gate.h"
#include "engine/sqlite/function_support.h"

#include <algorithm>
#include <charconv>

namespace engine {

namespace {

using packet::ColumnType;

constexpr int widestInt64 = 18; ///< digits
constexpr std::size_t batchBytes = 128 * 1024;

/// "NUMBER(10,2)": whole numbers of up to 18 digits are Int64, all others Decimal.
void declareNumber(packet::Builder::Column &column, std::string_view declared)
{
    column.type = ColumnType::Decimal;
    const std::size_t open = declared.find('(');
    if (open == std::string_view::npos)
        return;
    int digits = 0;
    int scale = 0;
    const char *const end = declared.data() + declared.size();
    const auto [rest, error] = std::from_chars(declared.data() + open + 1, end, digits);
    if (error != std::errc())
        return;
    if (rest != end && *rest == ',')
        std::from_chars(rest + 1, end, scale);
    column.scale = std::max(scale, 0);
    if (scale == 0 && digits <= widestInt64)
        column.type = ColumnType::Int64;
}

void declare(packet::Builder::Column &column, const char *declared)
{
    if (!declared)
        return;
    const std::string type = gate::upperCase(declared);
    const auto begins = [&type](std::string_view prefix) { return type.starts_with(prefix); };
    if (begins("DATE") || begins("TIMESTAMP"))
        column.type = ColumnType::Timestamp;
    else if (begins("NUMBER") || begins("NUMERIC") || begins("DECIMAL"))
        declareNumber(column, type);
    else if (begins("INT"))
        column.type = ColumnType::Int64;
    else if (begins("VARCHAR") || begins("NVARCHAR") || begins("CHAR") || begins("NCHAR") || begins("CLOB") || begins("TEXT"))
        column.type = ColumnType::Text;
}

std::vector<packet::Builder::Column> columnsOf(sqlite3_stmt *statement)
{
    std::vector<packet::Builder::Column> columns;
    for (int position = 0; position < sqlite3_column_count(statement); ++position) {
        packet::Builder::Column &column = columns.emplace_back();
        column.name = gate::upperCase(sqlite3_column_name(statement, position));
        declare(column, sqlite3_column_decltype(statement, position));
    }
    return columns;
}

} // namespace

SqliteRowReader::Source SqliteRowReader::sourceOf(const packet::Builder::Column &column)
{
    if (!column.type)
        return Source::Computed;
    return *column.type == ColumnType::Text || *column.type == ColumnType::Timestamp ? Source::Text : Source::Number;
}

SqliteRowReader::SqliteRowReader(sqlite3_stmt *statement, const Job &job)
    : m_statement(statement)
    , m_builder(columnsOf(statement), job.sink)
    , m_blockBytes(job.options.memoryLimit)
{
    for (const packet::Builder::Column &column : columnsOf(statement))
        m_sources.push_back(sourceOf(column));
}

std::size_t SqliteRowReader::addRow()
{
    const std::size_t before = m_batch.size();
    const std::size_t count = m_sources.size();
    for (std::size_t column = 0; column < count; ++column) {
        sqlite3_value *const value = sqlite3_column_value(m_statement, int(column));
        if (m_sources[column] == Source::Text)
            gatherText(value);
        else
            gather(value);
    }
    const std::size_t size = m_batch.size() - before;
    m_blockBytes.addRow(size);
    if (m_batch.size() >= batchBytes) {
        if (!m_worker)
            m_worker.emplace([this](const RowBatch &batch) { build(batch); });
        m_worker->exchange(m_batch);
    }
    return size;
}

packet::PacketPtr SqliteRowReader::finish(packet::Extent extent)
{
    if (m_worker)
        m_worker->finish();
    build(m_batch);
    return m_builder.finish(extent);
}

inline void SqliteRowReader::gatherText(sqlite3_value *value)
{
    // The bytes, unlike the text, need no terminating zero; those of null are none.
    const auto *bytes = static_cast<const char *>(sqlite3_value_blob(value));
    if (!bytes)
        m_batch.addNull();
    else
        m_batch.addText(std::string_view(bytes, std::size_t(sqlite3_value_bytes(value))));
}

inline void SqliteRowReader::gather(sqlite3_value *value)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
        return m_batch.addNull();
    case SQLITE_INTEGER:
        return m_batch.addInteger(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
        return m_batch.addDouble(sqlite3_value_double(value));
    default:
        return gatherText(value);
    }
}

void SqliteRowReader::build(const RowBatch &batch)
try {
    for (RowBatch::Reader reader(batch); !reader.atEnd(); m_builder.endRow()) {
        for (std::size_t column = 0; column < m_sources.size(); ++column) {
            switch (reader.kind()) {
            case RowBatch::Kind::Null:
                m_builder.addNull(column);
                break;
            case RowBatch::Kind::Integer:
                m_builder.addInteger(column, reader.number<std::int64_t>());
                break;
            case RowBatch::Kind::Double:
                addDouble(column, reader.number<double>());
                break;
            case RowBatch::Kind::Text:
                m_builder.addText(column, reader.text());
                break;
            }
        }
    }
} catch (const functions::OracleError &error) {
    throw Error(Failure::Database, error.what());
} catch (const std::logic_error &error) {
    throw Error(Failure::Database, error.what());
}

void SqliteRowReader::addDouble(std::size_t column, double value)
{
    if (m_sources[column] == Source::Computed)
        m_builder.addDecimal(column, functions::computedNumber(value));
    else
        m_builder.addDouble(column, value);
}

} // namespace engine
