#pragma once

#include "engine/gate/gate.h"

namespace engine {

/// Writes a statement that has passed the gate for SQLite, so that it means there what it means in Oracle.
/// The helper functions it calls are those of sqlite/oracle_functions.h. Throws Error(Refused) for a use of rownum that
/// SQLite cannot express.
std::string sqliteText(std::string_view sql, const std::vector<gate::Annotation> &annotations);

/// Likewise for PostgreSQL; the helper functions are those of postgresql/oracle.sql. The server need not sort what lies beyond the
/// row limit: one row more is asked for, so that a cut is known.
std::string postgresqlText(std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit);

} // namespace engine
