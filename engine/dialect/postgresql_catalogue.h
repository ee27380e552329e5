#pragma once

#include <string_view>

namespace engine {

/// The names of the tables and views that a session may read without naming a schema.
constexpr std::string_view postgresqlTables
    = "select relname from pg_catalog.pg_class where relkind in ('r','v','m','p','f')"
      " and relnamespace in (select oid from pg_catalog.pg_namespace where nspname = any(pg_catalog.current_schemas(false)))"
      " and pg_catalog.has_table_privilege(oid, 'select')";

} // namespace engine
