#pragma once

#include "engine/block_bytes.h"
#include "engine/dialect/connection.h"
#include "packet/builder.h"

#include <libpq-fe.h>

#include <span>

namespace engine {

/// Brings the rows of a PostgreSQL statement into a packet. A numeric(p) of up to 18 digits is Int64, like NUMBER(p).
class PostgresqlRowReader {
public:
    /// Whether every column of the result is of a type that can be read in binary form. If not, ask for text.
    static bool readsBinary(const PGresult *result);

    /// Takes the columns and the form of the values from any result of the statement. The rows go where the job says.
    PostgresqlRowReader(const PGresult *result, const Job &job);
    /// The only row of the result. Throws Error(Database) when a value cannot be represented.
    void addRow(const PGresult *row);
    packet::PacketPtr finish(packet::Extent extent);

private:
    using Value = std::string_view;
    using Add = void (*)(packet::Builder &builder, std::size_t column, Value value);
    struct Type;
    static const Type *typeOf(const PGresult *result, int column);
    static std::span<const Type> types();
    static packet::Builder::Column columnOf(const PGresult *result, int column);
    static std::vector<packet::Builder::Column> columnsOf(const PGresult *result);

    std::vector<Add> m_add; ///< one a column
    packet::Builder m_builder;
    BlockBytes m_bytes;
};

} // namespace engine
