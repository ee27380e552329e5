#include "statement_writer.h"

#include <utility>

namespace {

constexpr int deepest = 3;

} // namespace

class StatementWriter::Block {
public:
    explicit Block(StatementWriter &writer)
        : m_sources(writer.m_sources)
        , m_around(writer.m_sources)
    {
    }
    Block(const Block &) = delete;
    ~Block() { m_sources = std::move(m_around); }

private:
    std::vector<Source> &m_sources;
    std::vector<Source> m_around;
};

const std::vector<StatementWriter::Table> &StatementWriter::tables()
{
    static const std::vector<Table> all {
        { "TAB_SCAN_COME",
            { { "BILL_CODE", "SUB_BILL_CODE", "SCAN_SITE", "DISPATCH_SITE", "CLASS", "REMARK" }, { "PIECE", "WEIGHT" }, { "SCAN_DATE" } } },
        { "TAB_SITE", { { "SITE_CODE", "SITE_NAME", "SUPERIOR_SITE", "PROVINCE", "TYPE" }, {}, {} } },
        { "TAB_SITE_BASIC", { { "SITE_NAME", "CAR_NAME" }, { "BL_SELF" }, {} } },
        { "TAB_SIGN", { { "BILL_CODE", "SIGN_MAN", "RECORD_SITE", "REMARK" }, { "DISPATCH_FEE" }, { "SIGN_DATE", "RECORD_DATE" } } },
        { "TAB_PROBLEM", { { "BILL_CODE", "PROBLEM_TYPE", "REMARK" }, {}, { "REGISTER_DATE" } } },
    };
    return all;
}

std::string StatementWriter::statement()
{
    m_sources.clear();
    m_aliases = 0;
    // SQLite compares fractions bit by bit, and takes the types of a set operation from its first select.
    const bool hasArms = oneIn(4);
    std::vector<Type> types;
    for (std::size_t count = 1 + below(3); count > 0; --count)
        types.push_back(hasArms && oneIn(2) ? Type::Date : hasArms ? Type::Text : anyType());
    std::string sql = block(types, 0);
    if (hasArms) {
        sql += pick({ " union ", " union all ", " minus ", " intersect " });
        sql += block(types, 1);
    }
    if (oneIn(3))
        sql += " order by 1" + pick({ "", " desc", " nulls first" });
    return sql;
}

/// A select with columns of these types, named c0, c1 and so on.
std::string StatementWriter::block(const std::vector<Type> &types, int depth)
{
    const Block keep(*this);
    return oneIn(4) ? groupedBlock(types, depth) : plainBlock(types, depth);
}

std::string StatementWriter::plainBlock(const std::vector<Type> &types, int depth)
{
    const std::string tables = from(depth);
    std::string sql = selectWord() + (oneIn(6) ? " distinct " : " ");
    for (std::size_t number = 0; number < types.size(); ++number)
        sql += (number > 0 ? "," : "") + expression(types[number], depth) + " c" + std::to_string(number);
    return sql + tables + (oneIn(3) ? "" : " where " + condition(depth));
}

std::string StatementWriter::groupedBlock(const std::vector<Type> &types, int depth)
{
    const std::string tables = from(depth);
    const std::string where = oneIn(2) ? " where " + condition(depth + 1) : "";
    const std::string key = oneIn(3) ? "" : column(Type::Text);
    std::string sql = selectWord() + " ";
    for (std::size_t number = 0; number < types.size(); ++number) {
        const bool isKey = types[number] == Type::Text && !key.empty() && oneIn(2);
        sql += (number > 0 ? "," : "") + (isKey ? key : aggregate(types[number], depth)) + " c" + std::to_string(number);
    }
    sql += tables + where + (key.empty() ? "" : " group by " + key);
    return oneIn(4) ? sql + " having count(*)" + pick({ ">", "<=" }) + std::to_string(below(5)) : sql;
}

/// The from clause. A condition keeps joined tables from multiplying.
std::string StatementWriter::from(int depth)
{
    const std::size_t around = m_sources.size();
    std::string sql = " from " + source(depth);
    if (oneIn(3)) {
        const std::string join = joinWords();
        const std::string joined = source(depth);
        const auto key = [this](const Source &table) { return columnText(table.alias, table.columns[0][below(table.columns[0].size())]); };
        sql += join + joined + " on " + key(m_sources[around]) + "=" + key(m_sources[around + 1]);
    }
    return sql;
}

std::string StatementWriter::source(int depth)
{
    Source added { "t" + std::to_string(++m_aliases), {} };
    std::string sql;
    if (depth < deepest && oneIn(4)) {
        const std::vector<Source> siblings = std::exchange(m_sources, {});
        const std::vector<Type> types { Type::Text, anyType() };
        sql = "(" + block(types, depth + 1) + ") " + added.alias;
        m_sources = siblings;
        for (std::size_t number = 0; number < types.size(); ++number)
            added.columns[int(types[number])].push_back("c" + std::to_string(number));
    } else {
        const Table &table = tables()[below(tables().size())];
        sql = tableText(table.name, added.alias);
        for (int type = 0; type < 3; ++type)
            added.columns[type].assign(table.columns[type].begin(), table.columns[type].end());
    }
    m_sources.push_back(added);
    return sql;
}

std::vector<std::string> StatementWriter::aliases() const
{
    std::vector<std::string> all;
    for (const Source &source : m_sources)
        all.push_back(source.alias);
    return all;
}

/// A column of a table from the given one on.
std::string StatementWriter::column(Type type, std::size_t first)
{
    std::vector<std::string> all;
    for (std::size_t source = first; source < m_sources.size(); ++source) {
        for (const std::string &name : m_sources[source].columns[int(type)])
            all.push_back(columnText(m_sources[source].alias, name));
    }
    return all.empty() ? literal(type) : all[below(all.size())];
}

std::string StatementWriter::literal(Type type)
{
    switch (type) {
    case Type::Text:
        return pick({ "'北京'", "'a'", "'京'", "'8'", "'0'", "'北京朝阳'", "'-'", "' '", "'网点'" });
    case Type::Number:
        return pick({ "0", "1", "2", "3", "10", "0.5", "2.25", "100" });
    case Type::Date:
        break;
    }
    return "to_date('2024-0" + std::to_string(1 + below(4)) + "-0" + std::to_string(1 + below(8)) + "',"
        + pick({ "'yyyy-mm-dd'", "'yyyy-mm-dd hh24:mi:ss'" }) + ")";
}

std::string StatementWriter::expression(Type type, int depth)
{
    if (depth >= deepest || oneIn(3))
        return column(type);
    if (oneIn(6))
        return either(type, depth + 1);
    if (oneIn(10)) {
        const Block keep(*this);
        const std::size_t around = m_sources.size();
        const std::string tables = from(deepest);
        // The maximum of a column of the tables around would be theirs.
        return "(" + selectWord() + " " + pick({ "max(", "min(" }) + column(type, around) + ")" + tables + " where " + comparison(deepest)
            + ")";
    }
    return type == Type::Text ? text(depth + 1) : type == Type::Number ? number(depth + 1) : date(depth + 1);
}

/// One of several values.
std::string StatementWriter::either(Type type, int depth)
{
    const std::string first = expression(type, depth);
    const std::string second = expression(type, depth);
    switch (below(6)) {
    case 0:
        return "nvl(" + first + "," + second + ")";
    case 1:
        return "coalesce(" + first + "," + second + "," + literal(type) + ")";
    case 2:
        return "nullif(" + first + "," + second + ")";
    case 3:
        return "decode(" + column(Type::Text) + "," + literal(Type::Text) + "," + first + "," + second + ")";
    case 4:
        return pick({ "greatest(", "least(" }) + first + "," + second + ")";
    default:
        return "case when " + comparison(depth) + " then " + first + (oneIn(2) ? " end" : " else " + second + " end");
    }
}

std::string StatementWriter::text(int depth)
{
    const std::string inner = expression(Type::Text, depth);
    switch (below(8)) {
    case 0:
        // Set apart: not every database takes what stands behind as one more summand.
        return inner + "||(" + expression(Type(below(2)), depth) + ")";
    case 1:
        return "substr(" + inner + "," + pick({ "1", "2", "-2", "0", "5" }) + pick({ "", ",1", ",3", ",0" }) + ")";
    case 2:
        return "replace(" + inner + "," + literal(Type::Text) + pick({ "", ",'x'", ",''" }) + ")";
    case 3:
        return pick({ "ltrim(", "rtrim(" }) + inner + "," + literal(Type::Text) + ")";
    case 4:
        return pick({ "trim(", "upper(", "lower(" }) + inner + ")";
    case 5:
        return "to_char(" + date(deepest) + "," + pick({ "'yyyy-mm-dd'", "'hh24:mi:ss'", "'yyyymm'", "'dd'" }) + ")";
    case 6:
        return "to_char(" + column(Type::Number) + ")";
    default:
        return "nvl(" + inner + ",'*')";
    }
}

std::string StatementWriter::number(int depth)
{
    const std::string inner = expression(Type::Number, depth);
    switch (below(8)) {
    case 0:
        return "(" + inner + ")" + pick({ "+", "-", "*" }) + "(" + expression(Type::Number, depth) + ")";
    case 1:
        return "(" + inner + ")/" + pick({ "2", "4", "0.5", "-5" });
    case 2:
        return "length(" + expression(Type::Text, depth) + ")";
    case 3:
        return "instr(" + expression(Type::Text, depth) + "," + literal(Type::Text) + pick({ "", ",2", ",-1", ",1,2" }) + ")";
    case 4:
        return pick({ "abs(", "sign(", "floor(", "ceil(", "-(" }) + inner + ")";
    case 5:
        return pick({ "round(", "trunc(" }) + column(Type::Number) + pick({ "", ",1", ",-1" }) + ")";
    case 6:
        return "mod(" + inner + "," + pick({ "2", "3", "0", "1.5" }) + ")";
    default:
        return "regexp_instr(" + expression(Type::Text, depth) + "," + pick({ "'[0-9]+'", "'^8'", "'(京|海)$'", "'.0'" }) + ")";
    }
}

std::string StatementWriter::date(int depth)
{
    switch (below(4)) {
    case 0:
        return literal(Type::Date) + pick({ "+", "-" }) + pick({ "1", "0.5", "30", "400" });
    case 1:
        return "trunc(" + expression(Type::Date, depth) + pick({ "", ",'mm'", ",'yyyy'" }) + ")";
    default:
        return column(Type::Date);
    }
}

std::string StatementWriter::aggregate(Type type, int depth)
{
    if (type != Type::Number || oneIn(4))
        return pick({ "max(", "min(" }) + expression(type, depth + 1) + ")";
    if (oneIn(2))
        return pick({ "count(", "count(distinct " }) + expression(anyType(), depth + 1) + ")";
    return oneIn(4) ? "avg(" + column(type) + ")" : "sum(" + expression(type, depth + 1) + ")";
}

std::string StatementWriter::condition(int depth)
{
    std::string sql = comparison(depth);
    for (; oneIn(3); sql += pick({ " and ", " or " }) + comparison(depth)) { }
    return oneIn(6) ? "not (" + sql + ")" : sql;
}

std::string StatementWriter::comparison(int depth)
{
    const Type type = anyType();
    const std::string left = expression(type, depth + 1);
    switch (below(7)) {
    case 0:
        return left + (oneIn(2) ? " is null" : " is not null");
    case 1:
        return left + pick({ " in (", " not in (" }) + literal(type) + "," + literal(type) + ")";
    case 2:
        return expression(Type::Text, depth + 1) + pick({ " like ", " not like " })
            + pick({ "'%京%'", "'8%'", "'_0%'", "'%'", "'北京'", "'%0_'" });
    case 3:
        return left + " between " + literal(type) + " and " + expression(type, depth + 1);
    case 4:
        if (depth < deepest) {
            const Block keep(*this);
            const std::string tables = from(deepest);
            return pick({ "exists", "not exists" }) + "(" + selectWord() + " 1" + tables + " where " + comparison(deepest) + ")";
        }
        [[fallthrough]];
    default:
        return left + pick({ "=", "<>", "<", ">=" }) + expression(type, depth + 1);
    }
}
