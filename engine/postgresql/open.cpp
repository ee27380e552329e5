#include "engine/postgresql/open.h"

#include "engine/postgresql/connection.h"

namespace engine {

std::unique_ptr<Connection> openPostgresql(const std::string &url) { return std::make_unique<PostgresqlConnection>(url); }

} // namespace engine
