#pragma once

#include "demo/generator.h"
#include "demo/network.h"
#include "demo/schedule.h"
#include "demo/writer.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace demo {

/// The parts of the schema: what makes the tables, and what makes their indexes.
std::string_view tableScript();
std::string_view indexScript();

/// The first day on which something happens.
Moment firstDayOf(const Settings &settings);

/// What several threads make shipments of.
class Production {
public:
    /// All of them must outlive it.
    Production(const Settings &settings, const Network &network, const Progress &progress);

    /// Writes shipments until there are no more, a batch at a time, and in each batch the earlier first.
    void write(Writer &writer);
    /// Nobody begins another batch.
    void stop() { m_next = m_settings.waybills; }

private:
    void writeOne(Writer &writer, std::uint64_t index) const;
    void tell(std::uint64_t begun);

    const Settings &m_settings;
    const Network &m_network;
    const Progress &m_progress;
    Schedule m_schedule;
    std::atomic<std::uint64_t> m_next = 0;
    std::mutex m_mutex {};
};

} // namespace demo
