#pragma once

#include "packet/block_sink.h"

#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// Runs one Oracle SELECT at a time against a database and brings its rows as a packet.
namespace engine {

enum class Failure {
    Refused, ///< the gate did not let the statement through
    Database, ///< the database refused or broke it off
    Cancelled,
    TimeLimit,
    Unavailable, ///< the database cannot be opened or is gone
};

/// what() is Chinese and carries the database's own words.
class Error : public std::runtime_error {
public:
    Error(Failure failure, const std::string &message)
        : std::runtime_error(message)
        , m_failure(failure)
    {
    }
    Failure failure() const { return m_failure; }

private:
    Failure m_failure;
};

struct QueryOptions {
    std::stop_token stop {}; ///< a stop request ends the statement within milliseconds, as Failure::Cancelled
    std::chrono::milliseconds timeLimit = std::chrono::minutes(10);
    std::int64_t rowLimit = std::numeric_limits<std::int64_t>::max(); ///< further rows are cut and the packet says so
    std::function<void(std::int64_t rows)> progress {}; ///< called now and then on the querying thread
};

struct EngineOptions {
    std::size_t connections = 4; ///< opened when needed; a query beyond them waits its turn
    std::vector<std::string> tables {}; ///< the tables that statements may name; empty: those of the database's own schema
};

/// Safe to use from several threads at once.
class Engine {
public:
    virtual ~Engine() = default;
    /// Runs `sql`, exactly one SELECT in Oracle's dialect, and returns all its rows. Throws Error.
    virtual packet::PacketPtr query(std::string_view sql, const QueryOptions &options = {}) = 0;
    /// Likewise, but hands the rows to the sink while it reads and keeps none. What the sink throws passes through, a
    /// std::logic_error as Error(Database).
    virtual void stream(std::string_view sql, packet::BlockSink &sink, const QueryOptions &options = {}) = 0;
};

/// Opens "sqlite:path", "postgresql://user@host/database" or "odbc:" with a connection string ("DSN=...", "DRIVER=...;...").
/// Throws Error(Unavailable) when the database is missing or is no database.
std::unique_ptr<Engine> openEngine(std::string_view url, const EngineOptions &options = {});

} // namespace engine
