#pragma once

#include "packet/decimal.h"

#include <sqlite3.h>

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

/// What the functions share: reading arguments, giving results, turning exceptions into errors of the statement.
namespace engine::functions {

using Arguments = std::span<sqlite3_value *>;
using Body = void (*)(sqlite3_context *context, Arguments arguments);

/// Ends the statement with this message, in Oracle's words.
class OracleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline bool isNull(sqlite3_value *value) { return sqlite3_value_type(value) == SQLITE_NULL; }
inline bool isText(sqlite3_value *value) { return sqlite3_value_type(value) == SQLITE_TEXT; }
/// Any value as text, numbers as Oracle writes them: 0.5 is ".5".
std::string textOf(sqlite3_value *value);
std::string_view viewOf(sqlite3_value *value); ///< of a text value
std::u32string charactersOf(sqlite3_value *value);
/// Any value as a number; throws OracleError when a text is none.
packet::Decimal numberOf(sqlite3_value *value);
std::int64_t integerOf(sqlite3_value *value);

/// What SQLite has computed in binary fractions. What differs from a number of four digits after the point by no more than their error is
/// that number; of anything else 15 digits are certain. Throws OracleError when it is too large.
packet::Decimal computedNumber(double value);

/// The empty text is null.
void setText(sqlite3_context *context, std::string_view text);
/// The most bytes of a text that a function has made longer than its arguments: those of Oracle's VARCHAR2.
constexpr std::size_t longestMadeText = 4000;
/// Throws OracleError for more bytes than that.
void checkMadeText(std::size_t bytes);
void setCharacters(sqlite3_context *context, std::u32string_view characters);
void setNumber(sqlite3_context *context, const packet::Decimal &number);

/// Registers a scalar function; -1 arguments: any number.
void add(sqlite3 *database, const char *name, int arguments, Body body);

/// Runs `work`; what it throws becomes the error of the statement.
template <class Work>
void guarded(sqlite3_context *context, Work &&work)
{
    try {
        work();
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception &error) {
        sqlite3_result_error(context, error.what(), -1);
    }
}

/// Cuts what lies below 10^-digits; digits may be negative.
packet::Decimal truncated(const packet::Decimal &number, int digits);

void addTextFunctions(sqlite3 *database);
void addLikeFunction(sqlite3 *database);
void addNumberFunctions(sqlite3 *database);
void addDateFunctions(sqlite3 *database);
void addRegexpFunctions(sqlite3 *database);
void addAggregates(sqlite3 *database);

} // namespace engine::functions
