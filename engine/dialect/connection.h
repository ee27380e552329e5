#pragma once

#include "engine/dialect/dialect.h"
#include "engine/engine.h"

namespace engine {

using Clock = std::chrono::steady_clock;

/// A statement in the words of the database, its limits and where its rows go.
struct Job {
    /// How many rows lie between two calls of the progress function.
    static constexpr std::int64_t rowsBetweenReports = 8192;

    std::string sql;
    const QueryOptions &options;
    Clock::time_point deadline;
    packet::BlockSink *sink = nullptr; ///< null: into a packet

    bool mustStop() const { return options.stop.stop_requested() || Clock::now() >= deadline; }
    /// Throws Error(Cancelled) or Error(TimeLimit) when the statement must stop.
    void throwIfStopped() const;
    void report(std::int64_t rows) const
    {
        if (options.progress)
            options.progress(rows);
    }
};

/// Whether a table is among these names; no names: all are wanted.
bool isWanted(std::string_view table, const std::vector<std::string> &names);

/// One connection to a database, read-only. It runs one statement at a time and keeps nothing of it afterwards.
class Connection {
public:
    virtual ~Connection() = default;
    /// A statement that has passed the gate, in the words of this database, with the reading that the gate had. It may ask for no more
    /// than one row beyond the limit. Throws Error(Refused) for a use of rownum that it cannot express.
    virtual std::string textFor(std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit,
        const gate::Reading *reading) const = 0;
    /// The tables and views with these names, or all of its own schema when there are none, with their columns; what it may not
    /// read is left out. Throws Error(Unavailable).
    virtual gate::Schema readTables(const std::vector<std::string> &names) = 0;
    /// From here on only these tables may be read; they live as long as the connection.
    virtual void restrictTo(const gate::Schema &) { }
    /// The rows; null when they went to a sink. Throws Error.
    virtual packet::PacketPtr run(const Job &job) = 0;
    /// Asks, in the words of this database, how many whole milliseconds it lies behind the one that it copies; empty when it never does.
    virtual std::string lagQuestion() const { return {}; }
    /// False when it is to be thrown away after a statement.
    virtual bool isUsable() const { return true; }
    /// Whether another database stands in its place, as far as can be seen while it runs nothing.
    virtual bool isReplaced() const { return false; }
};

} // namespace engine
