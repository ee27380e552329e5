#include "demo/postgresql_staging.h"

#include <exception>
#include <stdexcept>
#include <utility>

namespace demo {
namespace {

constexpr auto makeSchema = "drop schema if exists kelvara_making cascade; create schema kelvara_making";
constexpr auto dropSchema = "drop schema if exists kelvara_making cascade";
constexpr auto memoryForIndexes = "set maintenance_work_mem = '256MB'";

/// Moves every table, its parts too; indexes go with them.
std::string moveTo(const std::string &place)
{
    return "do $$ declare found record; begin"
           " for found in select relname from pg_class where relnamespace = 'kelvara_making'::regnamespace and relkind in ('r', 'p') loop"
           " execute format('alter table kelvara_making.%I set schema %I', found.relname, '"
        + place + "'); end loop; end $$";
}

/// New tables of the place would have these readers from the start.
std::string grantAsIn(const std::string &place)
{
    return "do $$ declare found record; begin"
           " for found in select rights.grantee::regrole as role from pg_default_acl, aclexplode(defaclacl) rights"
           " where defaclrole = current_user::regrole and defaclnamespace = '"
        + place
        + "'::regnamespace and defaclobjtype = 'r' and rights.privilege_type = 'SELECT' and rights.grantee <> 0 loop"
          " execute format('grant select on all tables in schema kelvara_making to %s', found.role); end loop; end $$";
}

} // namespace

PostgresqlStaging::PostgresqlStaging(const std::string &url, std::vector<std::string> tables, bool replaces)
    : m_url(url)
    , m_tables(std::move(tables))
    , m_database(url)
    , m_place(m_database.answer("select current_schema()"))
{
    for (const std::string &table : m_tables) {
        if (!replaces && !m_database.answer("select to_regclass('" + table + "')").empty())
            throw std::runtime_error("数据库中已经有表 " + table + "。要替换这些表，请加 --force。");
    }
    m_database.run(makeSchema);
}

PostgresqlStaging::~PostgresqlStaging()
{
    try {
        m_database.run(dropSchema);
    } catch (const std::exception &) {
        // The next run drops it.
    }
}

PostgresqlDatabase PostgresqlStaging::connect() const
{
    PostgresqlDatabase database(m_url);
    database.run("set search_path = kelvara_making");
    database.run(memoryForIndexes);
    return database;
}

void PostgresqlStaging::settle()
{
    for (const std::string &table : m_tables)
        m_database.run("vacuum (analyze) kelvara_making." + table);
}

void PostgresqlStaging::publish()
{
    // Commands that are sent together succeed or fail together.
    std::string commands;
    for (const std::string &table : m_tables)
        commands += "drop table if exists " + table + ";";
    m_database.run(commands + grantAsIn(m_place) + ";" + moveTo(m_place));
}

} // namespace demo
