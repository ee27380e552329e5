#include "engine/odbc/row_reader.h"

#include "engine/calendar.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace engine::odbc {

namespace {

using packet::ColumnType;

constexpr SQLULEN longestBound = 8192; ///< characters
constexpr std::size_t arrayBytes = 8 * 1024 * 1024; ///< of all columns together
constexpr std::size_t mostRowsAtOnce = 1024;
constexpr std::size_t numberWidth = 64;
constexpr SQLULEN momentSize = 32; ///< "2024-03-05 10:07:59", with fractions
constexpr SQLULEN widestInt64 = 18; ///< digits
constexpr std::size_t pieceBytes = 64 * 1024; ///< of a long text

SQLPOINTER attribute(SQLULEN value) { return reinterpret_cast<SQLPOINTER>(value); }

std::int64_t secondsOf(const SQL_TIMESTAMP_STRUCT &time)
{
    using namespace std::chrono;
    const sys_days date = year(time.year) / month(time.month) / day(time.day);
    return inCalendar(duration_cast<seconds>(date.time_since_epoch()).count() + (time.hour * 60 + time.minute) * 60 + time.second);
}

template <class Value>
Value valueAt(const char *bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

RowReader::RowReader(const Handle &statement, System system, const Job &job)
    : m_statement(statement)
    , m_columns(columnsOf(statement, system))
    , m_builder(fieldsOf(m_columns), job.sink)
    , m_bytes(job.options.memoryLimit)
{
    bind();
}

RowReader::~RowReader()
{
    SQLFreeStmt(m_statement, SQL_UNBIND);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
}

std::vector<RowReader::Column> RowReader::columnsOf(const Handle &statement, System system)
{
    SQLSMALLINT count = 0;
    if (!SQL_SUCCEEDED(SQLNumResultCols(statement, &count)))
        fail(statement);
    std::vector<Column> columns;
    for (int number = 1; number <= count; ++number)
        columns.push_back(columnOf(statement, SQLUSMALLINT(number), system));
    return columns;
}

RowReader::Column RowReader::columnOf(const Handle &statement, SQLUSMALLINT number, System system)
{
    const Description description = describe(statement, number);
    Column column { .field = { gate::upperCase(description.name) }, .size = description.size };
    if (system == System::Sqlite) {
        describeSqlite(column, description.typeName);
        return column;
    }
    switch (description.type) {
    case SQL_NUMERIC:
    case SQL_DECIMAL:
        describeNumber(column, description.digits);
        break;
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
        column.source = Source::Integer;
        column.field.type = ColumnType::Int64;
        break;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
        // Oracle describes a NUMBER without digits so; as text it stays exact.
        column.source = system == System::Oracle ? Source::Number : Source::Double;
        if (column.source == Source::Double)
            column.field.type = ColumnType::Float64;
        break;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
        column.source = Source::Timestamp;
        column.field.type = ColumnType::Timestamp;
        break;
    default:
        column.field.type = ColumnType::Text;
    }
    return column;
}

/// Computed numbers come without digits, or with more than any column has: their values decide.
void RowReader::describeNumber(Column &column, SQLSMALLINT digits)
{
    column.source = Source::Number;
    if (digits > 0)
        column.field.type = ColumnType::Decimal;
    else if (digits == 0 && column.size > 0 && column.size <= widestInt64)
        column.field.type = ColumnType::Int64;
}

/// SQLite's driver tells the declared type by its name alone, and makes dates lose their time unless they are read as texts.
void RowReader::describeSqlite(Column &column, std::string_view typeName)
{
    const auto begins = [typeName](std::string_view prefix) { return typeName.starts_with(prefix); };
    if (begins("DATE") || begins("TIMESTAMP")) {
        column.field.type = ColumnType::Timestamp;
        column.size = momentSize;
    } else if (begins("NUM") || begins("DEC") || begins("INT") || begins("DOUBLE") || begins("REAL") || begins("FLOAT")) {
        column.source = Source::Number;
    } else {
        column.field.type = ColumnType::Text;
    }
}

std::vector<packet::Builder::Column> RowReader::fieldsOf(const std::vector<Column> &columns)
{
    std::vector<packet::Builder::Column> fields;
    for (const Column &column : columns)
        fields.push_back(column.field);
    return fields;
}

/// Columns before the first long one are bound; from there on values can only be asked for one after the other.
void RowReader::bind()
{
    const std::size_t largestCharacter = m_statement.encoding() == Encoding::Wide ? sizeof(SQLWCHAR) : 4;
    std::size_t rowBytes = 1;
    bool allBound = true;
    for (Column &column : m_columns) {
        constexpr std::size_t widths[] = { 0, numberWidth, sizeof(SQLBIGINT), sizeof(double), sizeof(SQL_TIMESTAMP_STRUCT) };
        column.width = column.source == Source::Text ? column.size * largestCharacter + zeroSize(column) : widths[int(column.source)];
        allBound &= column.source != Source::Text || (column.size > 0 && column.size <= longestBound);
        column.isBound = allBound;
        rowBytes += allBound ? column.width : 0;
    }
    if (allBound)
        m_rowsAtOnce = std::clamp<std::size_t>(arrayBytes / rowBytes, 1, mostRowsAtOnce);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_BIND_TYPE, attribute(SQL_BIND_BY_COLUMN), 0);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_ARRAY_SIZE, attribute(m_rowsAtOnce), 0);
    SQLGetStmtAttr(m_statement, SQL_ATTR_ROW_ARRAY_SIZE, &m_rowsAtOnce, 0, nullptr);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, &m_fetched, 0);
    for (std::size_t number = 0; number < m_columns.size() && m_columns[number].isBound; ++number) {
        Column &column = m_columns[number];
        column.values.resize(column.width * m_rowsAtOnce);
        column.lengths.resize(m_rowsAtOnce);
        if (!SQL_SUCCEEDED(SQLBindCol(m_statement, SQLUSMALLINT(number + 1), targetOf(column), column.values.data(), SQLLEN(column.width),
                column.lengths.data())))
            fail(m_statement);
    }
}

SQLSMALLINT RowReader::targetOf(const Column &column) const
{
    constexpr SQLSMALLINT targets[] = { 0, SQL_C_CHAR, SQL_C_SBIGINT, SQL_C_DOUBLE, SQL_C_TYPE_TIMESTAMP };
    return column.source == Source::Text ? m_statement.textType() : targets[int(column.source)];
}

/// The bytes of the zero that the driver writes behind a value.
std::size_t RowReader::zeroSize(const Column &column) const
{
    if (column.source == Source::Text)
        return m_statement.encoding() == Encoding::Wide ? sizeof(SQLWCHAR) : 1;
    return column.source == Source::Number ? 1 : 0;
}

std::size_t RowReader::fetch()
{
    m_fetched = 0;
    const SQLRETURN result = SQLFetch(m_statement);
    if (result == SQL_NO_DATA)
        return 0;
    if (!SQL_SUCCEEDED(result))
        fail(m_statement);
    return m_fetched;
}

void RowReader::addRow(std::size_t row)
try {
    m_rowBytes = 0;
    for (std::size_t number = 0; number < m_columns.size(); ++number) {
        const Column &column = m_columns[number];
        if (!column.isBound || isCut(column, row))
            readWhole(number, row);
        else if (column.lengths[row] == SQL_NULL_DATA)
            m_builder.addNull(number);
        else
            addValue(number, column.values.data() + row * column.width, std::size_t(column.lengths[row]));
    }
    m_builder.endRow();
    m_bytes.addRow(m_rowBytes);
} catch (const std::logic_error &error) {
    throw Error(Failure::Database, error.what());
}

void RowReader::addValue(std::size_t column, const char *value, std::size_t size)
{
    m_rowBytes += size;
    switch (m_columns[column].source) {
    case Source::Text:
        return m_builder.addText(column, textOf(m_statement.encoding(), value, size, m_text));
    case Source::Number:
        return addNumber(column, { value, size });
    case Source::Integer:
        return m_builder.addInteger(column, valueAt<SQLBIGINT>(value));
    case Source::Double:
        return m_builder.addDouble(column, valueAt<double>(value));
    case Source::Timestamp:
        return m_builder.addTimestamp(column, secondsOf(valueAt<SQL_TIMESTAMP_STRUCT>(value)));
    }
}

/// Whole numbers arrive as such, so that a computed column without fractions becomes Int64.
void RowReader::addNumber(std::size_t column, std::string_view text)
{
    const auto number = packet::Decimal::parse(text);
    if (!number)
        return m_builder.addText(column, text);
    if (m_columns[column].field.type)
        return m_builder.addDecimal(column, *number);
    const packet::Decimal whole = number->rescaled(0);
    if (whole == *number && packet::Int128(std::int64_t(whole.units)) == whole.units)
        m_builder.addInteger(column, std::int64_t(whole.units));
    else
        m_builder.addDecimal(column, *number);
}

/// Whether the driver had more than fitted beside the zero at the end.
bool RowReader::isCut(const Column &column, std::size_t row) const
{
    const SQLLEN length = column.lengths[row];
    return length == SQL_NO_TOTAL || length > SQLLEN(column.width - zeroSize(column));
}

/// Asks for a value piece by piece.
void RowReader::readWhole(std::size_t column, std::size_t row)
{
    const auto number = SQLUSMALLINT(column + 1);
    const SQLSMALLINT target = targetOf(m_columns[column]);
    if (m_rowsAtOnce > 1 && !SQL_SUCCEEDED(SQLSetPos(m_statement, SQLSETPOSIROW(row + 1), SQL_POSITION, SQL_LOCK_NO_CHANGE)))
        throw Error(Failure::Database,
            "列 " + m_columns[column].field.name
                + " 的内容比驱动程序声明的长，驱动程序也不能补读；请用 substr 截取，或在数据源中调大文本长度");
    std::vector<char> whole;
    std::vector<char> piece(pieceBytes);
    const std::size_t zero = zeroSize(m_columns[column]);
    while (true) {
        SQLLEN length = 0;
        const SQLRETURN result = SQLGetData(m_statement, number, target, piece.data(), SQLLEN(piece.size()), &length);
        if (result == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(result))
            fail(m_statement);
        if (length == SQL_NULL_DATA)
            return m_builder.addNull(column);
        const bool more = length == SQL_NO_TOTAL || std::size_t(length) > piece.size() - zero;
        whole.insert(whole.end(), piece.begin(), piece.begin() + std::ptrdiff_t(more ? piece.size() - zero : std::size_t(length)));
        if (!more)
            break;
    }
    if (whole.empty())
        m_builder.addNull(column);
    else
        addValue(column, whole.data(), whole.size());
}

} // namespace engine::odbc
