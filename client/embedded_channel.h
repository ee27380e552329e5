#pragma once

#include "engine/engine.h"
#include "platform/connection/socket_connection.h"

#include <functional>
#include <memory>

namespace client {

/// Runs statements on an engine in the client's own process.
class EmbeddedChannel : public platform::StatementChannel {
public:
    explicit EmbeddedChannel(std::shared_ptr<engine::Engine> engine)
        : m_engine(std::move(engine))
    {
    }

    packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    {
        return m_engine->query(statement, { .stop = std::move(stop), .rowLimit = mostRows, .progress = progress });
    }

private:
    /// More rows than anyone reads; the rest is cut, and the status line says so, before the memory is full.
    static constexpr std::int64_t mostRows = 2'000'000;

    std::shared_ptr<engine::Engine> m_engine;
};

} // namespace client
