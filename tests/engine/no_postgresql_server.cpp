#include "postgresql_server.h"

#include <stdexcept>

namespace engine::test {

PostgresqlServer &PostgresqlServer::instance() { throw std::runtime_error("this build reaches no PostgreSQL"); }
PostgresqlServer::~PostgresqlServer() = default;
std::string PostgresqlServer::makeDatabase(const std::string &) { return {}; }
std::string PostgresqlServer::run(const std::string &, const std::string &) const { return {}; }
std::string PostgresqlServer::url(const std::string &, const std::string &) const { return {}; }
std::string PostgresqlServer::odbcUrl(const std::string &) const { return {}; }

} // namespace engine::test
