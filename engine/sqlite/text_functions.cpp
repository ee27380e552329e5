#include "engine/sqlite/function_support.h"
#include "engine/sqlite/statement_budget.h"
#include "engine/sqlite/text_search.h"

#include <algorithm>

namespace engine::functions {

namespace {

bool anyNull(Arguments arguments) { return std::any_of(arguments.begin(), arguments.end(), isNull); }

void concat(sqlite3_context *context, Arguments arguments)
{
    std::string text;
    for (sqlite3_value *value : arguments) {
        text += textOf(value);
        checkMadeText(text.size());
    }
    setText(context, text);
}

void substr(sqlite3_context *context, Arguments arguments)
{
    if (anyNull(arguments))
        return;
    const std::u32string text = charactersOf(arguments[0]);
    const auto size = std::int64_t(text.size());
    std::int64_t begin = integerOf(arguments[1]);
    begin = begin > 0 ? begin - 1 : begin < 0 ? size + begin : 0;
    const std::int64_t count = arguments.size() > 2 ? std::min(integerOf(arguments[2]), size) : size;
    if (begin >= 0 && begin < size && count > 0)
        setCharacters(context, std::u32string_view(text).substr(std::size_t(begin), std::size_t(count)));
}

/// The place of an occurrence that begins at `start` or behind it, counted from 1; 0: none.
std::int64_t placeOf(std::u32string_view text, std::u32string_view part, std::int64_t start, std::int64_t occurrence)
{
    TextSearch<char32_t> search(text, part);
    for (std::size_t found = search.next(); found != text.npos; found = search.next()) {
        if (std::int64_t(found) >= start - 1 && --occurrence == 0)
            return std::int64_t(found) + 1;
    }
    return 0;
}

/// Likewise, but searches backwards from the character that stands `start` places from the end.
std::int64_t placeFromEnd(std::u32string text, std::u32string part, std::int64_t start, std::int64_t occurrence)
{
    std::reverse(text.begin(), text.end());
    std::reverse(part.begin(), part.end());
    const auto size = std::int64_t(part.size());
    const std::int64_t place = placeOf(text, part, std::max<std::int64_t>(start - size + 1, 1), occurrence);
    return place == 0 ? 0 : std::int64_t(text.size()) - (place - 1) - size + 1;
}

/// Oracle counts from the end when the position is negative, and then searches backwards.
void instr(sqlite3_context *context, Arguments arguments)
{
    if (anyNull(arguments))
        return;
    const std::u32string text = charactersOf(arguments[0]);
    const std::u32string part = charactersOf(arguments[1]);
    const std::int64_t start = arguments.size() > 2 ? integerOf(arguments[2]) : 1;
    const std::int64_t occurrence = arguments.size() > 3 ? integerOf(arguments[3]) : 1;
    if (occurrence < 1)
        throw OracleError("ORA-01428: 参数 " + std::to_string(occurrence) + " 超出范围");
    sqlite3_result_int64(context,
        start == 0      ? 0
            : start > 0 ? placeOf(text, part, start, occurrence)
                        : placeFromEnd(text, part, -start, occurrence));
}

void trimmed(sqlite3_context *context, Arguments arguments, bool left, bool right)
{
    if (anyNull(arguments))
        return;
    const std::u32string text = charactersOf(arguments[0]);
    const std::u32string set = arguments.size() > 1 ? charactersOf(arguments[1]) : U" ";
    const auto isInSet = [&set](char32_t character) {
        StatementBudget::work(set.size());
        return set.find(character) != std::u32string::npos;
    };
    std::u32string_view kept = text;
    while (left && !kept.empty() && isInSet(kept.front()))
        kept.remove_prefix(1);
    while (right && !kept.empty() && isInSet(kept.back()))
        kept.remove_suffix(1);
    setCharacters(context, kept);
}

void trim(sqlite3_context *context, Arguments arguments) { trimmed(context, arguments, true, true); }
void ltrim(sqlite3_context *context, Arguments arguments) { trimmed(context, arguments, true, false); }
void rtrim(sqlite3_context *context, Arguments arguments) { trimmed(context, arguments, false, true); }

void replace(sqlite3_context *context, Arguments arguments)
{
    const std::string text = textOf(arguments[0]);
    const std::string wanted = textOf(arguments[1]);
    const std::string with = arguments.size() > 2 ? textOf(arguments[2]) : std::string();
    if (wanted.empty())
        return setText(context, text);
    std::string replaced;
    std::size_t begin = 0;
    TextSearch<char> search(text, wanted);
    for (std::size_t found = search.next(); found != std::string::npos; found = search.next()) {
        if (found < begin)
            continue;
        replaced.append(text, begin, found - begin).append(with);
        begin = found + wanted.size();
        checkMadeText(replaced.size());
    }
    replaced.append(text, begin);
    checkMadeText(replaced.size());
    setText(context, replaced);
}

bool isNumber(sqlite3_value *value) { return sqlite3_value_type(value) == SQLITE_INTEGER || sqlite3_value_type(value) == SQLITE_FLOAT; }

/// Values are compared as the first of them is: as numbers or as texts.
std::strong_ordering compared(sqlite3_value *left, sqlite3_value *right, bool numbers)
{
    if (numbers)
        return numberOf(left) <=> numberOf(right);
    return textOf(left).compare(textOf(right)) <=> 0;
}

bool same(sqlite3_value *left, sqlite3_value *right)
{
    if (isNull(left) || isNull(right))
        return isNull(left) && isNull(right);
    return compared(left, right, isNumber(left) || isNumber(right)) == 0;
}

void decode(sqlite3_context *context, Arguments arguments)
{
    std::size_t position = 1;
    for (; position + 1 < arguments.size(); position += 2) {
        if (same(arguments[0], arguments[position]))
            return sqlite3_result_value(context, arguments[position + 1]);
    }
    if (position < arguments.size())
        sqlite3_result_value(context, arguments[position]);
}

void nvl2(sqlite3_context *context, Arguments arguments) { sqlite3_result_value(context, arguments[isNull(arguments[0]) ? 2 : 1]); }

void extreme(sqlite3_context *context, Arguments arguments, bool greatest)
{
    if (anyNull(arguments))
        return;
    sqlite3_value *best = arguments[0];
    const bool numbers = isNumber(best);
    for (sqlite3_value *value : arguments.subspan(1)) {
        const auto order = compared(value, best, numbers);
        if (greatest ? order > 0 : order < 0)
            best = value;
    }
    sqlite3_result_value(context, best);
}

void greatest(sqlite3_context *context, Arguments arguments) { extreme(context, arguments, true); }
void least(sqlite3_context *context, Arguments arguments) { extreme(context, arguments, false); }

} // namespace

void addTextFunctions(sqlite3 *database)
{
    add(database, "oracle_concat", -1, concat);
    add(database, "substr", 2, substr);
    add(database, "substr", 3, substr);
    for (int arguments = 2; arguments <= 4; ++arguments)
        add(database, "instr", arguments, instr);
    add(database, "trim", 1, trim);
    add(database, "ltrim", 1, ltrim);
    add(database, "ltrim", 2, ltrim);
    add(database, "rtrim", 1, rtrim);
    add(database, "rtrim", 2, rtrim);
    add(database, "replace", 2, replace);
    add(database, "replace", 3, replace);
    add(database, "decode", -1, decode);
    add(database, "nvl2", 3, nvl2);
    add(database, "greatest", -1, greatest);
    add(database, "least", -1, least);
}

} // namespace engine::functions
