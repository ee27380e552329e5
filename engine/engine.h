#pragma once

#include "engine/error.h"
#include "engine/reader.h"
#include "packet/block_sink.h"

#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// Runs one Oracle SELECT at a time against a database and brings its rows as a packet.
namespace engine {

struct QueryOptions {
    std::stop_token stop {}; ///< a stop request ends the statement within milliseconds, as Failure::Cancelled
    std::chrono::milliseconds timeLimit = std::chrono::minutes(10);
    std::size_t memoryLimit = 256 * 1024 * 1024; ///< bytes in this process; a statement that needs more ends as Failure::Database
    std::int64_t rowLimit = std::numeric_limits<std::int64_t>::max(); ///< further rows are cut and the packet says so
    std::shared_ptr<const Reader> reader {}; ///< null: the rules of tables do not apply
    std::function<void(std::int64_t rows)> progress {}; ///< called now and then on the querying thread
};

/// What readers see of a table. Rules of one table add up; at most one of them has a condition.
struct TableRule {
    std::string table;
    /// Which rows, in Oracle's words, over columns of the table; tables of its subqueries have no rules there. It may hold
    /// "in (:sites)", :site and :employee. Empty: all rows.
    std::string condition {};
    std::vector<std::string> hidden {}; ///< columns: texts read as ***, everything else as null
    std::string place {}; ///< where it is written, for the operator
};

struct EngineOptions {
    std::size_t connections = 4; ///< opened when needed; a query beyond them waits its turn
    std::vector<std::string> tables {}; ///< the tables that statements may name; empty: those of the database's own schema
    std::vector<TableRule> rules {}; ///< one that cannot be used makes the engine unavailable
    std::vector<std::string> lookups {}; ///< tables that change rarely
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
    /// One of the tables that statements may name; empty when there is none.
    virtual std::string anyTable() const = 0;
    /// Whether another database stands in the place of the one that is read, so that it should be opened anew. Cheap.
    virtual bool isReplaced() { return false; }
    /// Whether a statement names no other tables than `lookups`.
    virtual bool readsLookupsOnly(std::string_view sql) const = 0;
    /// How far a copy of a database lies behind it; zero for what is no copy. Takes two seconds at most. Throws Error.
    virtual std::chrono::milliseconds lag() = 0;
};

} // namespace engine
