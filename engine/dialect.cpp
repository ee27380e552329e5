#include "engine/dialect.h"

#include "engine/engine.h"
#include "packet/decimal.h"

#include <algorithm>

namespace engine {

namespace {

using gate::Construct;
using gate::Finding;

enum class Placement : std::uint8_t { Close, Open, Replace };

struct Edit {
    std::uint32_t position;
    std::uint32_t removed;
    Placement placement;
    std::uint32_t order; ///< among edits of one place: what closes comes inner first, what opens outer first
    std::string text;
};

class Writer {
public:
    explicit Writer(std::string_view sql)
        : m_sql(sql)
    {
    }

    void open(std::uint32_t position, std::string text) { add(position, 0, Placement::Open, std::move(text)); }
    void close(std::uint32_t position, std::string text) { add(position, 0, Placement::Close, std::move(text)); }
    void replace(const Finding &finding, std::string text)
    {
        add(finding.begin, finding.end - finding.begin, Placement::Replace, std::move(text));
    }
    void wrap(const Finding &finding, std::string before, std::string after)
    {
        open(finding.begin, std::move(before));
        close(finding.end, std::move(after));
    }

    std::string text()
    {
        std::sort(m_edits.begin(), m_edits.end(), [](const Edit &left, const Edit &right) {
            return std::tie(left.position, left.placement, left.order) < std::tie(right.position, right.placement, right.order);
        });
        std::string out;
        out.reserve(m_sql.size() + 24 * m_edits.size());
        std::size_t copied = 0;
        for (const Edit &edit : m_edits) {
            append(out, m_sql.substr(copied, edit.position - copied));
            append(out, edit.text);
            copied = edit.position + edit.removed;
        }
        append(out, m_sql.substr(copied));
        return out;
    }

private:
    static bool isWordCharacter(char character)
    {
        return character == '_' || (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z')
            || (character >= 'A' && character <= 'Z') || std::uint8_t(character) >= 0x80;
    }
    /// Words that a quote or a sign kept apart must not grow together.
    static void append(std::string &out, std::string_view part)
    {
        if (!out.empty() && !part.empty() && isWordCharacter(out.back()) && isWordCharacter(part.front()))
            out += ' ';
        out += part;
    }
    void add(std::uint32_t position, std::uint32_t removed, Placement placement, std::string text)
    {
        const auto sequence = std::uint32_t(m_edits.size());
        m_edits.push_back({ position, removed, placement, placement == Placement::Open ? ~sequence : sequence, std::move(text) });
    }

    std::string_view m_sql;
    std::vector<Edit> m_edits;
};

std::string_view partOf(std::string_view sql, const Finding &finding) { return sql.substr(finding.begin, finding.end - finding.begin); }

/// The number itself, or a call that reports at run time that it is none.
std::string numberOf(std::string_view literal)
{
    const auto number = packet::Decimal::parse(literal.substr(1, literal.size() - 2));
    return number ? number->toString() : "to_number(" + std::string(literal) + ")";
}

/// How Oracle names a column without an alias: its text in capitals without blanks.
std::string columnName(std::string_view expression)
{
    std::string name;
    for (const char character : gate::upperCase(expression)) {
        if (character == '"')
            name += '"';
        if (std::string_view(" \t\r\n").find(character) == std::string_view::npos)
            name += character;
    }
    return " as \"" + name + '"';
}

std::string functionName(std::string_view name)
{
    // SQLite computes ifnull in line, without a call.
    return gate::upperCase(name) == "NVL" ? "ifnull" : std::string(name);
}

void write(Writer &writer, std::string_view sql, const Finding &finding)
{
    const std::string limit = " limit " + std::to_string(finding.limit);
    switch (finding.construct) {
    case Construct::EmptyText:
        return writer.replace(finding, "NULL");
    case Construct::NumberText:
        return writer.replace(finding, numberOf(partOf(sql, finding)));
    case Construct::Concat:
        return writer.wrap(finding, "oracle_concat(", ")");
    case Construct::ConcatSign:
    case Construct::DateSign:
        return writer.replace(finding, ",");
    case Construct::Division:
        return writer.replace(finding, "*1.0/");
    case Construct::DatePlus:
        return writer.wrap(finding, "oracle_date_plus(", ")");
    case Construct::DateMinus:
        return writer.wrap(finding, "oracle_date_minus(", ")");
    case Construct::FunctionName:
        return writer.replace(finding, functionName(partOf(sql, finding)));
    case Construct::Sysdate:
        return writer.replace(finding, "datetime('now','localtime')");
    case Construct::ReservedName:
        return writer.wrap(finding, "\"", "\"");
    case Construct::SortKey:
        return writer.close(finding.end, " nulls last");
    case Construct::SortKeyDescending:
        return writer.close(finding.end, " nulls first");
    case Construct::FromDual:
        return writer.replace(finding, "");
    case Construct::MinusWord:
        return writer.replace(finding, "except");
    case Construct::SingleValue:
        return writer.wrap(finding, "oracle_single(", ")");
    case Construct::UnnamedColumn:
        return writer.close(finding.end, columnName(partOf(sql, finding)));
    case Construct::RowCondition:
        return writer.replace(finding, "1=1");
    case Construct::LimitedBlock:
        return writer.close(finding.end, limit);
    case Construct::LimitedArm:
        return writer.wrap(finding, "select * from (", limit + ")");
    case Construct::Rownum:
        throw Error(Failure::Refused,
            "语句被拒绝：rownum 只能以“and rownum<=n”的形式用于没有 group by、distinct 和汇总函数的查询，请把它移到外层的子查询");
    }
}

} // namespace

std::string sqliteText(std::string_view sql, const std::vector<gate::Finding> &findings)
{
    Writer writer(sql);
    for (const Finding &finding : findings)
        write(writer, sql, finding);
    return writer.text();
}

} // namespace engine
