#include "engine/dialect/dialect_writer.h"

#include "engine/engine.h"
#include "packet/decimal.h"

#include <algorithm>
#include <tuple>

namespace engine {

namespace {

using gate::Construct;

bool isWordCharacter(char character)
{
    return character == '_' || (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z')
        || (character >= 'A' && character <= 'Z') || std::uint8_t(character) >= 0x80;
}

/// Words that a quote or a sign kept apart must not grow together.
void append(std::string &out, std::string_view part)
{
    if (!out.empty() && !part.empty() && isWordCharacter(out.back()) && isWordCharacter(part.front()))
        out += ' ';
    out += part;
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

} // namespace

/// The number itself, or a call that reports at run time that it is none.
std::string DialectWriter::numberOf(std::string_view literal) const
{
    const auto number = packet::Decimal::parse(literal.substr(1, literal.size() - 2));
    return number ? number->toString() : call("to_number").append(literal) + ")";
}

void DialectWriter::writeTable(const gate::Annotation &annotation, const gate::RowRule &rule, const std::string &table,
    std::string_view last, const std::string &condition)
{
    std::string text = "(select " + rule.columns + " from " + table;
    if (!condition.empty())
        text += " where (" + condition + ")";
    text.append(last).append(annotation.begin == annotation.end ? ") " : ")");
    replace(annotation, std::move(text));
}

void DialectWriter::writeValue(const gate::Annotation &annotation)
{
    const Reader &reader = m_reading->reader;
    if (annotation.construct == Construct::OwnSite)
        return replace(annotation, reader.site());
    if (annotation.construct == Construct::Employee)
        return replace(annotation, reader.employee());
    std::string list = "(";
    for (const std::string &sites : reader.sites())
        list.append(list.size() > 1 ? "," : "").append(sites);
    replace(annotation, list + ")");
}

void DialectWriter::writeCommon(const gate::Annotation &annotation)
{
    switch (annotation.construct) {
    case Construct::EmptyText:
        return replace(annotation, "NULL");
    case Construct::NumberText:
        return replace(annotation, numberOf(partOf(annotation)));
    case Construct::Division:
        return replace(annotation, "*1.0/");
    case Construct::DatePlus:
        return wrap(annotation, call("oracle_date_plus"), ")");
    case Construct::DateMinus:
        return wrap(annotation, call("oracle_date_minus"), ")");
    case Construct::DateSign:
        return replace(annotation, ",");
    case Construct::FromDual:
        return replace(annotation, "");
    case Construct::MinusWord:
        return replace(annotation, "except");
    case Construct::UnnamedColumn:
        return close(annotation.end, columnName(partOf(annotation)));
    case Construct::RowCondition:
        return replace(annotation, "1=1");
    case Construct::LimitedBlock:
        return close(annotation.end, " limit " + std::to_string(annotation.limit));
    case Construct::SiteList:
    case Construct::OwnSite:
    case Construct::Employee:
        return writeValue(annotation);
    case Construct::Rownum:
        throw Error(Failure::Refused,
            "语句被拒绝：rownum 只能以“and rownum<=n”的形式用于没有 group by、distinct 和汇总函数的查询，请把它移到外层的子查询");
    default:
        return;
    }
}

std::string DialectWriter::text()
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

void DialectWriter::add(std::uint32_t position, std::uint32_t removed, Placement placement, std::string text)
{
    const auto sequence = std::uint32_t(m_edits.size());
    m_edits.push_back({ position, removed, placement, placement == Placement::Open ? ~sequence : sequence, std::move(text) });
}

} // namespace engine
