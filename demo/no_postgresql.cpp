#include "demo/fill_postgresql.h"

#include <stdexcept>

namespace demo {

void fillPostgresql(const Settings &, const Progress &)
{
    throw std::runtime_error("本程序不能写 PostgreSQL 数据库，请给出一个文件名，写成 SQLite 文件。");
}

} // namespace demo
