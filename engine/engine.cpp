#include "engine/engine.h"

#include "engine/sqlite/sqlite_engine.h"

namespace engine {

std::unique_ptr<Engine> openEngine(std::string_view url, const EngineOptions &options)
{
    constexpr std::string_view sqlite = "sqlite:";
    if (!url.starts_with(sqlite))
        throw Error(Failure::Unavailable, "无法识别的数据库地址“" + std::string(url) + "”，应写作 sqlite:文件路径");
    return std::make_unique<SqliteEngine>(std::string(url.substr(sqlite.size())), options);
}

} // namespace engine
