#pragma once

#include "engine/gate/gate.h"

namespace engine {

/// Whose words a database understands.
enum class Dialect : std::uint8_t { Oracle, Sqlite, Postgresql };

/// Writes a statement that has passed the gate for SQLite, so that it means there what it means in Oracle.
/// The helper functions it calls are those of sqlite/oracle_functions.h. Throws Error(Refused) for a use of rownum that
/// SQLite cannot express.
std::string sqliteText(std::string_view sql, const std::vector<gate::Finding> &findings);

/// Likewise for PostgreSQL; the helper functions are those of postgresql/oracle.sql.
std::string postgresqlText(std::string_view sql, const std::vector<gate::Finding> &findings);

/// Cuts a statement that has been written for PostgreSQL behind that many rows; the server need not sort what lies beyond.
std::string postgresqlFirstRows(const std::string &text, std::int64_t rows);

/// For Oracle itself the text stays as it is, hints included.
std::string textFor(Dialect dialect, std::string_view sql, const std::vector<gate::Finding> &findings);

} // namespace engine
