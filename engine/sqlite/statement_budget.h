#pragma once

#include "engine/dialect/connection.h"

#include <cstddef>
#include <cstdint>

namespace engine {

/// What the statement on this thread may take of time, memory and temporary files. SQLite takes its memory and its temporary files
/// through here, so that even where it asks nobody (preparing, sorting, one call of a function) it ends with an error in time.
class StatementBudget {
public:
    /// `kept`: the bytes that SQLite still holds for the connection from earlier statements; in the end those that it keeps.
    StatementBudget(const Job &job, std::int64_t &kept);
    StatementBudget(const StatementBudget &) = delete;
    /// Gives freed memory back to the system when there was much.
    ~StatementBudget();

    /// That of the statement on this thread; null when none runs.
    static StatementBudget *current();
    /// Called by functions about as often as they have looked at so many bytes. Throws std::runtime_error when time is up.
    static void work(std::size_t bytes);

    /// Whether SQLite may take that many bytes more.
    bool mayTake(std::size_t bytes);
    void take(std::int64_t bytes);
    /// Likewise for a temporary file.
    bool mayWrite(std::int64_t bytes);
    void write(std::int64_t bytes) { m_written += bytes; }
    /// The bytes that the rows which are gathered for the sink take.
    void setGathered(std::size_t bytes);
    bool mustStop() const { return m_job.mustStop(); }
    /// Throws Error for what ended the statement, if it was one of these.
    void throwIfExhausted() const;

    /// SQLite's virtual file system that bounds temporary files. Throws Error(Unavailable) when SQLite was in use before it could be told
    /// to take its memory here.
    static const char *fileSystem();

private:
    const Job &m_job;
    std::int64_t &m_kept;
    std::int64_t m_limit;
    std::int64_t m_taken;
    std::int64_t m_largest = 0;
    std::int64_t m_gathered = 0;
    std::int64_t m_written = 0; ///< to temporary files, less what was deleted
    std::size_t m_work = 0; ///< since the clock was looked at
    bool m_isOutOfMemory = false;
    bool m_isOutOfFiles = false;
};

} // namespace engine
