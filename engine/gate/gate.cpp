#include "engine/gate/gate.h"

#include "engine/error.h"
#include "engine/gate/lexer.h"
#include "engine/gate/parser.h"

#include <algorithm>

namespace engine::gate {

namespace {

/// "第 2 行第 5 列": lines end with a line feed, columns count characters.
std::string placeOf(std::string_view text, std::size_t position)
{
    const std::string_view before = text.substr(0, position);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const std::size_t lineBegin = before.rfind('\n') + 1;
    const auto column
        = std::count_if(before.begin() + std::ptrdiff_t(lineBegin), before.end(), [](char byte) { return (byte & 0xC0) != 0x80; });
    return "第 " + std::to_string(lines + 1) + " 行第 " + std::to_string(column + 1) + " 列";
}

[[noreturn]] void refuse(const std::string &reason) { throw Error(Failure::Refused, "语句被拒绝：" + reason); }

/// Runs the work on the text of a condition and says where it is refused.
template <class Work>
auto locate(std::string_view text, const Work &work)
{
    try {
        return work();
    } catch (const Refusal &refusal) {
        throw Error(Failure::Refused, "条件" + placeOf(text, refusal.position()) + refusal.what());
    }
}

} // namespace

std::vector<Annotation> check(std::string_view sql, const Schema &schema, const Reading *reading)
{
    if (sql.size() > largestStatement)
        refuse("长度 " + std::to_string(sql.size()) + " 字节，超过 65536 字节的上限，请减少条件或单号");
    try {
        const std::vector<Token> tokens = tokensOf(sql);
        if (tokens.size() == 1)
            refuse("语句是空的，请先给出一条查询语句");
        return Parser(sql, tokens, schema, reading).run();
    } catch (const Refusal &refusal) {
        refuse(placeOf(sql, refusal.position()) + refusal.what());
    }
}

Condition readCondition(std::string_view text, const std::string &table, const Schema &schema)
{
    return locate(text, [&] {
        const std::vector<Token> tokens = conditionTokensOf(text);
        return Parser(text, tokens, schema, nullptr).runCondition(table);
    });
}

void checkConditionWords(std::string_view text)
{
    locate(text, [text] { conditionTokensOf(text); });
}

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), capital);
    return upper;
}

} // namespace engine::gate
