#pragma once

#include <string_view>

namespace engine {

/// The tables and views that a session may read without naming a schema, with the name of each column.
constexpr std::string_view postgresqlColumns
    = "select relname, attname from pg_catalog.pg_class c join pg_catalog.pg_attribute on attrelid = c.oid"
      " where relkind in ('r','v','m','p','f') and attnum > 0 and not attisdropped"
      " and relnamespace in (select oid from pg_catalog.pg_namespace where nspname = any(pg_catalog.current_schemas(false)))"
      " and pg_catalog.has_table_privilege(c.oid, 'select')";

} // namespace engine
