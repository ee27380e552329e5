#include "engine/dialect/connection.h"

namespace engine {

void Job::throwIfStopped() const
{
    if (options.stop.stop_requested())
        throw Error(Failure::Cancelled, "查询已取消");
    if (Clock::now() >= deadline)
        throw Error(Failure::TimeLimit, "查询超过了规定的时间，请缩小查询范围");
}

} // namespace engine
