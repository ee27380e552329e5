#pragma once

#include <string_view>

namespace engine {

/// The tables and views that a session may read by a name without a schema, with the name of each column in the table's order. Names
/// with capitals are out of reach, as a statement's names are written small. A part of a table cannot be read by its own name: rules
/// are those of the table.
constexpr std::string_view postgresqlColumns
    = "select relname, attname from pg_catalog.pg_class c join pg_catalog.pg_attribute on attrelid = c.oid"
      " where relkind in ('r','v','m','p','f') and not relispartition and attnum > 0 and not attisdropped"
      " and relnamespace in (select oid from pg_catalog.pg_namespace where nspname = any(pg_catalog.current_schemas(false)))"
      " and pg_catalog.pg_table_is_visible(c.oid) and relname = pg_catalog.lower(relname)"
      " and pg_catalog.has_table_privilege(c.oid, 'select') order by c.oid, attnum";

} // namespace engine
