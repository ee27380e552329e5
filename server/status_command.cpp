#include "server/status_command.h"

#include "server/base/table_text.h"
#include "server/control.h"

#include <nlohmann/json.hpp>

#include <ostream>
#include <stdexcept>

namespace server {

using Json = nlohmann::json;

namespace {

Json answerTo(const std::filesystem::path &control, const std::string &command)
{
    const Json answer = Json::parse(askServer(control, command), nullptr, false);
    if (!answer.is_object())
        throw std::runtime_error("服务没有回答，可能正在停机，请稍候再试");
    return answer;
}

std::string secondsOf(std::int64_t milliseconds)
{
    return std::to_string(milliseconds / 1000) + "." + std::to_string(milliseconds % 1000 / 100);
}

} // namespace

void showStatus(const std::filesystem::path &control, bool asJson, std::ostream &out)
{
    const Json statements = answerTo(control, "list").value("statements", Json::array());
    if (asJson) {
        for (const Json &row : statements)
            out << row.dump() << '\n';
        return;
    }
    if (statements.empty()) {
        out << "没有正在运行或排队的查询\n";
        return;
    }
    out << padded("编号", 16) << padded("用户", 14) << padded("地址", 17) << padded("状态", 8) << padded("秒", 9) << padded("行", 11)
        << "语句\n";
    for (const Json &row : statements) {
        out << padded(row.value("id", ""), 16) << padded(row.value("user", ""), 14) << padded(row.value("address", ""), 17)
            << padded(row.value("state", "") == "waiting" ? "排队" : "运行", 8)
            << padded(secondsOf(row.value("milliseconds", std::int64_t(0))), 9)
            << padded(std::to_string(row.value("rows", std::int64_t(0))), 11) << row.value("database", "") << ' '
            << oneLine(row.value("statement", "")) << '\n';
    }
}

void endStatement(const std::filesystem::path &control, const std::string &id, std::ostream &out)
{
    if (!answerTo(control, "end " + id).value("ended", false))
        throw std::runtime_error("没有编号为 " + id + " 的查询，它可能已经结束；用 kelvara-server status 查看现在的");
    out << "已结束查询 " << id << '\n';
}

} // namespace server
