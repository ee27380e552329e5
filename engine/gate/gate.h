#pragma once

#include "engine/gate/schema.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The one authority over statements: nothing reaches a database that has not been read here from end to end.
namespace engine::gate {

constexpr std::size_t largestStatement = 64 * 1024; ///< bytes
constexpr int deepestNesting = 200; ///< parentheses, subqueries, function calls and case expressions

/// What a database other than Oracle may have to be told in another way, in the order of reading.
enum class Construct : std::uint8_t {
    EmptyText, ///< '' is null
    NumberText, ///< a text literal that is compared with a number
    Concat, ///< a whole a||b||...; `||` treats null as the empty text
    ConcatSign, ///< one || of it
    Division, ///< the sign; whole numbers divide to fractions
    Divisor, ///< what it divides by; zero is an error
    DatePlus, ///< a whole sum of a date and days
    DateMinus, ///< a whole difference of a date and days, or of two dates
    DateSign, ///< its + or -
    FunctionName,
    Sysdate,
    ReservedName, ///< a name that is a reserved word elsewhere
    QuotedName, ///< a name in quotes, with them
    LikePattern, ///< a pattern without an escape character
    UnnamedTable, ///< a subquery in a from clause without an alias
    SortKey, ///< ascending and without "nulls ...": nulls come last
    SortKeyDescending, ///< likewise descending: nulls come first
    FromDual, ///< the whole "from dual"
    MinusWord, ///< the set operation
    IntersectedArms, ///< what an intersect takes together, though it stands behind a union or minus: all before it
    SingleValue, ///< the column of a scalar subquery that must not give a second row
    UnnamedColumn, ///< a computed column of the result without an alias
    RowCondition, ///< a "rownum <= n" of a where clause's conjunction
    LimitedBlock, ///< the whole select of such a condition; `limit` is n
    LimitedArm, ///< likewise, as one of several joined by set operations
    Rownum, ///< any other use of rownum
    RuledTable, ///< a table that has a rule, whose number is `limit`; without a length when the table's name comes to stand as an alias
    SiteList, ///< the list of an "in (:sites)", with its parentheses; `limit` is where the test begins
    OwnSite, ///< :site
    Employee, ///< :employee
};

struct Annotation {
    Construct construct;
    std::uint32_t begin = 0; ///< bytes in the statement
    std::uint32_t end = 0;
    std::int64_t limit = 0;
};

struct Reading;

/// Reads exactly one Oracle SELECT over the given tables and their columns. Takes time in proportion to its length and to what the
/// rules of `reading` put in place of tables. Throws engine::Error(Refused), which says what is wrong and where.
std::vector<Annotation> check(std::string_view sql, const Schema &schema, const Reading *reading = nullptr);

/// What stands behind "where", over the columns of one table and with a reader's values.
struct Condition {
    std::string text {};
    std::vector<Annotation> annotations {};
    std::size_t words = 0;
    std::size_t siteLists = 0; ///< how often all of the reader's sites come in
};

/// Throws engine::Error(Refused), likewise. Neither rownum nor totals are conditions of a row.
Condition readCondition(std::string_view text, const std::string &table, const Schema &schema);
/// Reads its words alone, without knowing the tables.
void checkConditionWords(std::string_view text);

std::string upperCase(std::string_view text);

} // namespace engine::gate
