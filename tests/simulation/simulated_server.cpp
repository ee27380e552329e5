#include "tests/simulation/simulated_server.h"

#include <fstream>
#include <thread>

namespace simulation {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longestStop = std::chrono::seconds(5); ///< all limits of World are far below

/// The text of a name in a line of the log; empty when there is none. No text that is asked for has escapes.
std::string textOf(const std::string &line, const std::string &name)
{
    const std::string key = "\"" + name + "\":\"";
    const std::size_t begin = line.find(key);
    return begin == line.npos ? "" : line.substr(begin + key.size(), line.find('"', begin + key.size()) - begin - key.size());
}

std::string tagOf(const std::string &line, const std::string &tagBegin)
{
    const std::size_t begin = line.find(tagBegin);
    return begin == line.npos ? "" : line.substr(begin, line.find('e', begin) + 1 - begin);
}

} // namespace

SimulatedServer::SimulatedServer(const World &world, std::string name, std::function<std::int64_t()> clock)
    : m_world(world)
    , m_name(std::move(name))
    , m_clock(std::move(clock))
{
}

void SimulatedServer::start()
{
    server::Configuration configuration = m_world.configuration();
    configuration.clock = m_clock;
    configuration.auditLog = m_world.file(m_name + "-" + std::to_string(m_lives.size()) + ".log");
    m_lives.push_back({ configuration.auditLog });
    m_server = std::make_unique<server::Server>(configuration);
    m_port = m_server->port();
}

std::vector<std::string> SimulatedServer::end(End how)
{
    std::vector<std::string> faults;
    if (how == End::Clean) {
        const auto begun = Clock::now();
        m_server->stop();
        if (Clock::now() - begun > longestStop)
            faults.push_back("the server took longer to end than it may");
        auto &pool = m_server->service().database("main").pool();
        if (!server::test::becomesTrue([&] { return pool.running() + pool.waiting() == 0; }, longestStop))
            faults.push_back("statements run in a server that has ended");
    }
    m_lives.back().isAbrupt = how == End::Abrupt;
    m_port = 0;
    m_server.reset();
    return faults;
}

std::vector<SimulatedServer::Arrival> SimulatedServer::arrivals(const std::string &tagBegin) const
{
    std::vector<Arrival> all;
    for (const Life &life : m_lives) {
        std::map<std::string, std::size_t> byId;
        std::ifstream log(life.log);
        for (std::string line; std::getline(log, line);) {
            const std::string event = textOf(line, "event");
            const std::string id = textOf(line, "id");
            if (event == "query") {
                byId[id] = all.size();
                all.push_back({ tagOf(line, tagBegin), textOf(line, "time"), "", life.isAbrupt });
            } else if (event == "result") {
                Arrival &arrival = all[byId.at(id)];
                arrival.result = textOf(line, "result");
                arrival.mayBeRefused
                    = arrival.result == "unavailable" || (arrival.result == "cancelled" && &life != &m_lives.back() && !life.isAbrupt);
            }
        }
        std::filesystem::remove(life.log);
    }
    return all;
}

std::string logTime() { return textOf(server::AuditLine("now").text(), "time"); }

} // namespace simulation
