#include "engine/check/database_check.h"

#include "engine/check/needed_tables.h"

namespace engine {
namespace {

/// Whether the database takes a statement. Throws when it is gone.
bool takes(Engine &engine, const std::string &sql)
try {
    engine.query(sql);
    return true;
} catch (const Error &error) {
    if (error.failure() == Failure::Unavailable)
        throw;
    return false;
}

std::string columnsOf(const NeededTable &table)
{
    std::string list;
    for (const std::string_view column : table.columns)
        list += (list.empty() ? "a." : ",a.") + std::string(column);
    return list;
}

std::string selecting(const std::string &columns, std::string_view table)
{
    return "select " + columns + " from " + std::string(table) + " a where 1=0";
}

/// "" when the table has all that it needs.
std::string faultOf(Engine &engine, const NeededTable &table)
{
    if (takes(engine, selecting(columnsOf(table), table.name)))
        return {};
    const std::string name(table.name);
    if (!takes(engine, selecting("1 as n", table.name)))
        return "没有表 " + name + "（或不在允许查询的表中）";
    std::string missing;
    for (const std::string_view column : table.columns) {
        if (!takes(engine, selecting("a." + std::string(column), table.name)))
            missing += (missing.empty() ? "" : "、") + std::string(column);
    }
    return "表 " + name + " 没有列 " + missing;
}

/// Texts are compared as in Oracle by their codes: capitals come first.
bool comparesByCode(Engine &engine, std::string_view anyTable)
{
    const auto answer = engine.query(
        "select case when 'B'<'a' then 1 else 0 end as n from (select count(*) as c from " + std::string(anyTable) + " a where 1=0) b");
    std::string text;
    answer->appendText(0, 0, text);
    return text == "1";
}

} // namespace

std::vector<std::string> databaseFaults(Engine &engine)
{
    std::vector<std::string> faults;
    for (const NeededTable &table : neededTables()) {
        if (std::string fault = faultOf(engine, table); !fault.empty())
            faults.push_back(std::move(fault));
    }
    if (const std::string table = engine.anyTable(); !table.empty() && !comparesByCode(engine, table))
        faults.push_back(
            "文字不是按编码（排序规则 C）比较的，查询的结果会与 Oracle 不同；请用 createdb -T template0 -E UTF8 --lc-collate=C "
            "新建数据库，再把数据导入");
    return faults;
}

} // namespace engine
