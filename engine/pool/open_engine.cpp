#include "engine/pool/open_engine.h"

#include "engine/odbc/connection.h"
#include "engine/pool/pooled_engine.h"
#include "engine/postgresql/open.h"
#include "engine/sqlite/connection.h"

namespace engine {

std::unique_ptr<Engine> openEngine(std::string_view url, const EngineOptions &options)
{
    constexpr std::string_view sqlite = "sqlite:";
    if (url.starts_with(sqlite)) {
        const std::string path(url.substr(sqlite.size()));
        return std::make_unique<PooledEngine>([path] { return std::make_unique<SqliteConnection>(path); }, options);
    }
    if (url.starts_with("postgresql://") || url.starts_with("postgres://"))
        return std::make_unique<PooledEngine>([url = std::string(url)] { return openPostgresql(url); }, options);
    constexpr std::string_view odbc = "odbc:";
    if (url.starts_with(odbc)) {
        const std::string parameters(url.substr(odbc.size()));
        return std::make_unique<PooledEngine>([parameters] { return std::make_unique<OdbcConnection>(parameters); }, options);
    }
    throw Error(Failure::Unavailable, "无法识别数据库地址，应写作 sqlite:文件路径、postgresql://用户@主机/数据库 或 odbc:DSN=数据源");
}

} // namespace engine
