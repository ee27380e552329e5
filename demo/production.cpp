#include "demo/production.h"

#include "demo/journey.h"
#include "demo/schema.h"

#include <algorithm>

namespace demo {

namespace {

std::size_t indexesBegin() { return schema.find("-- Indexes"); }

} // namespace

std::string_view tableScript() { return schema.substr(0, indexesBegin()); }
std::string_view indexScript() { return schema.substr(indexesBegin()); }

Moment firstDayOf(const Settings &settings)
{
    return settings.days > 0 ? startOfDay(settings.asOf) - (settings.days - 1) * day : startOfPreviousMonth(settings.asOf);
}

Production::Production(const Settings &settings, const Network &network, const Progress &progress)
    : m_settings(settings)
    , m_network(network)
    , m_progress(progress)
    , m_schedule(firstDayOf(settings), settings.asOf - 2 * minute)
{
}

void Production::write(Writer &writer)
{
    constexpr std::uint64_t batch = 20000;
    for (std::uint64_t begin = 0; (begin = m_next.fetch_add(batch)) < m_settings.waybills;) {
        tell(begin);
        const auto end = std::min(begin + batch, m_settings.waybills);
        for (std::uint64_t index = begin; index < end; ++index)
            writeOne(writer, index);
    }
}

void Production::writeOne(Writer &writer, std::uint64_t index) const
{
    Random random(m_settings.seed, index + 1);
    Shipment shipment = newShipment(m_network, random, index, m_schedule.pickUp(index, m_settings.waybills, random));
    live(m_network, random, m_settings.asOf, shipment);
    writer.write(shipment);
}

void Production::tell(std::uint64_t begun)
{
    const std::lock_guard lock(m_mutex);
    if (begun > 0)
        m_progress("生成运单", begun, m_settings.waybills);
}

} // namespace demo
