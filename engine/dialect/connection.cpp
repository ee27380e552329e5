#include "engine/dialect/connection.h"

#include <algorithm>

namespace engine {

void Job::throwIfStopped() const
{
    if (options.stop.stop_requested())
        throw Error(Failure::Cancelled, "查询已取消");
    if (Clock::now() >= deadline)
        throw Error(Failure::TimeLimit, "查询超过了规定的时间，请缩小查询范围");
}

bool isWanted(std::string_view table, const std::vector<std::string> &names)
{
    const auto isTable = [table](const std::string &name) { return gate::NameEqual()(name, table); };
    return names.empty() || std::any_of(names.begin(), names.end(), isTable);
}

} // namespace engine
