#pragma once

#include "engine/dialect/connection.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace engine {

/// A pool of connections to one database: the gate, the dialect, then the first free connection.
class PooledEngine : public Engine {
public:
    /// Makes a connection or throws Error(Unavailable).
    using Opener = std::function<std::unique_ptr<Connection>()>;

    PooledEngine(Opener open, const EngineOptions &options);
    packet::PacketPtr query(std::string_view sql, const QueryOptions &options) override { return run(sql, options, nullptr); }
    void stream(std::string_view sql, packet::BlockSink &sink, const QueryOptions &options) override { run(sql, options, &sink); }
    bool readsLookupsOnly(std::string_view sql) const override;
    std::chrono::milliseconds lag() override;
    std::string anyTable() const override { return m_schema.empty() ? std::string() : m_schema.begin()->first; }
    bool isReplaced() override;

private:
    class Lease;

    /// A statement that has passed the gate.
    struct Checked {
        std::string_view sql;
        std::vector<gate::Annotation> annotations;
        const gate::Reading *reading; ///< null: no rules apply
    };

    void readRules(Connection &connection, const EngineOptions &options);
    packet::PacketPtr run(std::string_view sql, const QueryOptions &options, packet::BlockSink *sink);
    packet::PacketPtr runRuled(std::string_view sql, gate::Reading reading, const QueryOptions &options, packet::BlockSink *sink);
    packet::PacketPtr runChecked(
        const Checked &statement, const QueryOptions &options, Clock::time_point deadline, packet::BlockSink *sink);
    std::unique_ptr<Connection> acquire(const std::stop_token &stop, Clock::time_point deadline);
    std::unique_ptr<Connection> openAnother();
    void release(std::unique_ptr<Connection> connection);

    Opener m_open;
    std::size_t m_limit;
    gate::Schema m_schema;
    gate::Schema m_lookups; ///< of it, the tables that change rarely
    gate::RowRules m_rules;
    std::mutex m_mutex;
    std::condition_variable_any m_released;
    std::vector<std::unique_ptr<Connection>> m_idle;
    std::size_t m_busy = 0;
};

} // namespace engine
