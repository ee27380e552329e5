#pragma once

#include "engine/gate/row_rules.h"

namespace engine {

/// Writes a statement that has passed the gate for SQLite, so that it means there what it means in Oracle, and every table that has a
/// rule as its rows for the reader; `reading` is null when the gate had none. The helper functions it calls are those of
/// sqlite/oracle_functions.h. Throws Error(Refused) for a use of rownum that SQLite cannot express.
std::string sqliteText(std::string_view sql, const std::vector<gate::Annotation> &annotations, const gate::Reading *reading = nullptr);

/// Likewise for PostgreSQL; the helper functions are those of postgresql/oracle.sql. The server need not sort what lies beyond the
/// row limit: one row more is asked for, so that a cut is known.
std::string postgresqlText(
    std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit, const gate::Reading *reading = nullptr);

/// Likewise for Oracle, where only the tables with a rule are changed.
std::string oracleText(std::string_view sql, const std::vector<gate::Annotation> &annotations, const gate::Reading *reading = nullptr);

} // namespace engine
