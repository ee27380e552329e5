#include "engine/error.h"
#include "engine/postgresql/open.h"

#include <memory>

namespace engine {

std::unique_ptr<Connection> openPostgresql(const std::string &)
{
    throw Error(Failure::Unavailable, "本程序不能直接打开 PostgreSQL 数据库。请用 --server 连接应用服务器，或用 odbc: 加数据源打开它。");
}

} // namespace engine
