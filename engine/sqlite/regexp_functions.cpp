#include "engine/sqlite/function_support.h"
#include "engine/sqlite/regexp.h"
#include "engine/sqlite/statement_budget.h"

#include <memory>

namespace engine::functions {

namespace {

constexpr int patternArgument = 1;

bool ignoresCase(Arguments arguments)
{
    const std::string modes = arguments.size() > 5 ? textOf(arguments[5]) : std::string();
    if (modes.find_first_not_of("ic") != std::string::npos)
        throw OracleError("ORA-01760: 正则表达式的匹配参数只支持 i 和 c");
    return !modes.empty() && modes.back() == 'i';
}

/// The compiled pattern. SQLite keeps it for the statement as long as the pattern is constant, and owns it from then on.
const Regexp &compiled(sqlite3_context *context, Arguments arguments, std::unique_ptr<Regexp> &owned)
{
    if (const auto *kept = static_cast<const Regexp *>(sqlite3_get_auxdata(context, patternArgument)))
        return *kept;
    owned = std::make_unique<Regexp>(charactersOf(arguments[patternArgument]), ignoresCase(arguments));
    const Regexp &regexp = *owned;
    sqlite3_set_auxdata(context, patternArgument, new Regexp(regexp), [](void *data) { delete static_cast<Regexp *>(data); });
    return regexp;
}

/// regexp_instr(text, pattern, position, occurrence, what, modes): where a match begins (what = 0) or ends (1), from 1; 0 = none.
void regexpInstr(sqlite3_context *context, Arguments arguments)
{
    for (sqlite3_value *value : arguments.first(std::min<std::size_t>(arguments.size(), 5))) {
        if (isNull(value))
            return;
    }
    std::unique_ptr<Regexp> owned;
    const Regexp &regexp = compiled(context, arguments, owned);
    const std::u32string text = charactersOf(arguments[0]);
    const std::int64_t position = arguments.size() > 2 ? integerOf(arguments[2]) : 1;
    const std::int64_t occurrence = arguments.size() > 3 ? integerOf(arguments[3]) : 1;
    const std::int64_t what = arguments.size() > 4 ? integerOf(arguments[4]) : 0;
    if (position < 1 || occurrence < 1 || what < 0 || what > 1)
        throw OracleError("ORA-01428: regexp_instr 的参数超出范围");
    auto from = std::size_t(position - 1);
    for (std::int64_t found = 1; from <= text.size(); ++found) {
        const auto match = regexp.find(text, from, StatementBudget::work);
        if (!match)
            break;
        if (found == occurrence)
            return sqlite3_result_int64(context, std::int64_t(what == 0 ? match->begin : match->end) + 1);
        from = match->end > match->begin ? match->end : match->end + 1;
    }
    sqlite3_result_int64(context, 0);
}

} // namespace

void addRegexpFunctions(sqlite3 *database)
{
    for (int arguments = 2; arguments <= 6; ++arguments)
        add(database, "regexp_instr", arguments, regexpInstr);
}

} // namespace engine::functions
