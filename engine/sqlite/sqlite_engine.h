#pragma once

#include "engine/sqlite/connection.h"

#include <condition_variable>
#include <mutex>

namespace engine {

/// A pool of connections to one SQLite file.
class SqliteEngine : public Engine {
public:
    SqliteEngine(const std::string &path, const EngineOptions &options);
    packet::PacketPtr query(std::string_view sql, const QueryOptions &options) override { return run(sql, options, nullptr); }
    void stream(std::string_view sql, packet::BlockSink &sink, const QueryOptions &options) override { run(sql, options, &sink); }

private:
    class Lease;
    using Clock = SqliteConnection::Clock;

    packet::PacketPtr run(std::string_view sql, const QueryOptions &options, packet::BlockSink *sink);
    std::unique_ptr<SqliteConnection> acquire(const std::stop_token &stop, Clock::time_point deadline);
    std::unique_ptr<SqliteConnection> open();
    void release(std::unique_ptr<SqliteConnection> connection);

    std::string m_path;
    std::size_t m_limit;
    gate::TableSet m_tables;
    std::mutex m_mutex;
    std::condition_variable_any m_released;
    std::vector<std::unique_ptr<SqliteConnection>> m_idle;
    std::size_t m_busy = 0;
};

} // namespace engine
