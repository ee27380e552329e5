#pragma once

#include "engine/block_bytes.h"
#include "engine/dialect/connection.h"
#include "engine/odbc/handle.h"
#include "packet/builder.h"

namespace engine::odbc {

/// Brings the rows of an executed statement into a packet. The driver fills arrays of many rows, one array a column.
///
/// A column without a bound on its size is read piece by piece, row after row. A bounded one may still hold more than the
/// driver has announced: then the rest is asked for, and where the driver cannot give it the statement fails. Nothing is cut.
class RowReader {
public:
    /// The rows go where the job says.
    RowReader(const Handle &statement, System system, const Job &job);
    RowReader(const RowReader &) = delete;
    ~RowReader();

    /// The next rows from the driver; 0 at the end. Throws Error.
    std::size_t fetch();
    /// One of the fetched rows, counted from 0. Throws Error(Database) when a value cannot be represented.
    void addRow(std::size_t row);
    packet::PacketPtr finish(packet::Extent extent) { return m_builder.finish(extent); }

private:
    enum class Source : std::uint8_t { Text, Number, Integer, Double, Timestamp };
    struct Column {
        packet::Builder::Column field {};
        Source source = Source::Text;
        SQLULEN size = 0; ///< characters or digits; 0: not known
        std::size_t width = 0; ///< bytes a row
        bool isBound = false;
        std::vector<char> values {};
        std::vector<SQLLEN> lengths {}; ///< bytes, or SQL_NULL_DATA
    };

    static std::vector<Column> columnsOf(const Handle &statement, System system);
    static Column columnOf(const Handle &statement, SQLUSMALLINT number, System system);
    static void describeNumber(Column &column, SQLSMALLINT digits);
    static void describeSqlite(Column &column, std::string_view typeName);
    static std::vector<packet::Builder::Column> fieldsOf(const std::vector<Column> &columns);
    void bind();
    SQLSMALLINT targetOf(const Column &column) const;
    std::size_t zeroSize(const Column &column) const;
    void addValue(std::size_t column, const char *value, std::size_t size);
    void addNumber(std::size_t column, std::string_view text);
    bool isCut(const Column &column, std::size_t row) const;
    void readWhole(std::size_t column, std::size_t row);

    const Handle &m_statement;
    std::vector<Column> m_columns;
    packet::Builder m_builder;
    BlockBytes m_bytes;
    SQLULEN m_rowsAtOnce = 1;
    SQLULEN m_fetched = 0;
    std::size_t m_rowBytes = 0; ///< of the row at hand
    std::string m_text; ///< for conversions
};

} // namespace engine::odbc
