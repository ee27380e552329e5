#include "tests/simulation/simulation.h"

#include "server/base/system.h"
#include "server/tls/certificate.h"
#include "server/users/token.h"
#include "server/users/user_file.h"
#include "tests/simulation/faulty_network.h"
#include "tests/simulation/simulated_client.h"
#include "tests/simulation/simulated_server.h"

#include <argon2.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace simulation {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t serverCount = 2;

/// A hash of the test password that takes no time to compare.
std::string cheapHash()
{
    const std::string_view password = server::test::password;
    char encoded[160];
    argon2id_hash_encoded(1, 8, 1, password.data(), password.size(), "salt of no use", 14, 16, encoded, sizeof encoded);
    return encoded;
}

LinePlan planLine(Random random)
{
    using Fault = LinePlan::Fault;
    using Direction = LinePlan::Direction;
    LinePlan plan;
    if (happens(random, 0.3))
        plan.connectDelay = std::chrono::milliseconds(pick(random, 0, 15));
    if (happens(random, 0.15)) {
        plan.largestPiece = pick(random, 1, 2000);
        plan.pieceDelay = std::chrono::microseconds(pick(random, 0, 300));
    }
    if (happens(random, 0.1))
        return plan;
    constexpr Fault faults[] = { Fault::Refused, Fault::Closed, Fault::Closed, Fault::Closed, Fault::Reset, Fault::Reset, Fault::Silent,
        Fault::HalfOpen, Fault::Flipped };
    plan.fault = faults[random() % std::size(faults)];
    plan.direction = happens(random, 0.3) ? Direction::ToServer : Direction::ToClient;
    // The handshake takes about 1,500 bytes, small answers a few hundred each, large ones up to a hundred thousand.
    constexpr std::uint64_t reaches[] = { 2'000, 6'000, 20'000, 100'000 };
    plan.after = pick(random, 0, plan.direction == Direction::ToServer ? 8'000 : reaches[random() % std::size(reaches)]);
    return plan;
}

/// What happens to the servers while the clients ask.
struct Event {
    int atStatement = 0; ///< when so many have begun
    enum class Kind { CleanRestart, AbruptRestart, ClockJump } kind {};
    std::size_t server = 0;
    std::chrono::milliseconds downTime {};
    std::int64_t jump = 0; ///< seconds
};

std::vector<Event> planEvents(std::uint64_t seed, int statements)
{
    using Kind = Event::Kind;
    Random random = randomFor(seed, 2);
    std::vector<Event> events(pick(random, 0, 4));
    for (Event &event : events) {
        event.atStatement = int(pick(random, 1, std::uint64_t(statements)));
        event.kind = happens(random, 0.4) ? Kind::ClockJump : happens(random, 0.5) ? Kind::CleanRestart : Kind::AbruptRestart;
        event.server = random() % serverCount;
        event.downTime = std::chrono::milliseconds(pick(random, 0, 100));
        event.jump = std::int64_t(pick(random, 0, 60)) * 3600 - 30 * 3600;
    }
    std::ranges::sort(events, {}, &Event::atStatement);
    return events;
}

/// One run.
class Simulation {
public:
    Simulation(const World &world, std::uint64_t seed, const Size &size)
        : m_world(world)
        , m_seed(seed)
        , m_size(size)
    {
        for (std::size_t number = 0; number < serverCount; ++number) {
            const std::string name = std::to_string(seed) + "-" + std::to_string(number);
            m_servers.emplace_back(world, name, [this] { return server::secondsNow() + m_clockShift; }).start();
        }
    }

    Findings run()
    {
        std::vector<std::vector<Asked>> asked(std::size_t(m_size.clients));
        {
            FaultyNetwork network([this](std::size_t gate, std::size_t connection) {
                ++m_findings.connections;
                return planLine(randomFor(m_seed, 3, gate, connection));
            });
            std::vector<std::jthread> threads;
            for (auto &client : makeClients(network))
                threads.emplace_back([&, client, number = threads.size()] { asked[number] = client->run(m_size.statements); });
            operate();
        }
        for (SimulatedServer &server : m_servers)
            note(server.end(SimulatedServer::End::Clean));
        judge(asked);
        return std::move(m_findings);
    }

private:
    std::vector<std::shared_ptr<SimulatedClient>> makeClients(FaultyNetwork &network)
    {
        std::vector<std::shared_ptr<SimulatedClient>> clients;
        for (int number = 0; number < m_size.clients; ++number) {
            Random random = randomFor(m_seed, 4, std::uint64_t(number));
            SimulatedClient::Surroundings surroundings;
            surroundings.session.authorities = { m_world.certificate() };
            surroundings.session.timeouts = { .connect = 300ms, .answer = 600ms, .silence = 300ms };
            surroundings.session.mostRows = mostRows;
            surroundings.session.compressed = happens(random, 0.3);
            const std::size_t firstGate = std::size_t(number) * serverCount;
            for (const SimulatedServer &server : m_servers)
                surroundings.session.addresses.push_back({ "127.0.0.1", network.addGate(server.port()) });
            if (happens(random, 0.5))
                std::ranges::reverse(surroundings.session.addresses);
            surroundings.acts = [&network, firstGate] { return network.clientActs(firstGate) + network.clientActs(firstGate + 1); };
            surroundings.clockJumps = [this] { return m_clockJumps.load(); };
            surroundings.begins = [this] {
                const std::lock_guard lock(m_mutex);
                ++m_begun;
                m_changed.notify_one();
            };
            clients.push_back(std::make_shared<SimulatedClient>(m_seed, number, surroundings));
        }
        return clients;
    }

    /// Lets the events happen, each in its time.
    void operate()
    {
        for (const Event &event : planEvents(m_seed, m_size.clients * m_size.statements)) {
            {
                std::unique_lock lock(m_mutex);
                m_changed.wait(lock, [&] { return m_begun >= event.atStatement; });
            }
            if (event.kind == Event::Kind::ClockJump) {
                m_clockShift += event.jump;
                ++m_clockJumps;
                continue;
            }
            ++m_findings.restarts;
            using End = SimulatedServer::End;
            note(m_servers[event.server].end(event.kind == Event::Kind::CleanRestart ? End::Clean : End::Abrupt));
            std::this_thread::sleep_for(event.downTime);
            m_servers[event.server].start();
        }
    }

    void judge(const std::vector<std::vector<Asked>> &asked)
    {
        std::map<std::string, std::vector<SimulatedServer::Arrival>> arrivals;
        const std::string tagBegin = "s" + std::to_string(m_seed) + "c";
        for (const SimulatedServer &server : m_servers) {
            for (const auto &arrival : server.arrivals(tagBegin)) {
                if (arrival.result.empty() && !arrival.mayLackResult)
                    note({ arrival.tag + ": no end in the log" });
                arrivals[arrival.tag].push_back(arrival);
            }
        }
        for (const auto &ofClient : asked)
            for (const Asked &one : ofClient)
                judge(one, arrivals[one.plan.tag]);
    }

    void judge(const Asked &asked, const std::vector<SimulatedServer::Arrival> &arrivals)
    {
        const auto violated = [&](const std::string &what) { note({ asked.plan.tag + " (" + asked.outcome + "): " + what }); };
        if (!asked.violation.empty())
            violated(asked.violation);
        std::string ends;
        bool mayLackResult = false;
        bool isComplete = false;
        bool isLate = false;
        std::size_t unanswered = 0;
        for (const auto &arrival : arrivals) {
            ends += " " + (arrival.result.empty() ? "?" : arrival.result);
            mayLackResult |= arrival.mayLackResult;
            // The connection may break when the last byte is through.
            isComplete |= arrival.result == "ok" || arrival.result == "cancelled";
            isLate |= !asked.resultBeganAt.empty() && arrival.time > asked.resultBeganAt;
            unanswered += arrival.mayBeRefused ? 0 : 1;
        }
        if (unanswered > 2)
            violated("arrived " + std::to_string(unanswered) + " times:" + ends);
        if (isLate && asked.hasSentSince)
            violated("sent again after a part of its result had come:" + ends);
        if (asked.outcome == "whole" && !isComplete && !mayLackResult)
            violated("no server knows of the whole result:" + ends);
        m_findings.repeated += arrivals.size() > 1 ? 1 : 0;
        ++m_findings.outcomes[asked.outcome];
        m_findings.longestSeconds = std::max(m_findings.longestSeconds, asked.seconds);
        m_findings.trace.push_back(asked.plan.tag + " " + asked.outcome + ends);
    }

    void note(const std::vector<std::string> &violations)
    {
        m_findings.violations.insert(m_findings.violations.end(), violations.begin(), violations.end());
    }

    const World &m_world;
    const std::uint64_t m_seed;
    const Size m_size;
    Findings m_findings {};
    std::atomic<std::int64_t> m_clockShift { 0 };
    std::atomic<int> m_clockJumps { 0 };
    std::deque<SimulatedServer> m_servers {}; ///< stay where they are
    std::mutex m_mutex {};
    std::condition_variable m_changed {};
    int m_begun = 0;
};

} // namespace

World::World()
{
    m_configuration.address = "127.0.0.1";
    m_configuration.port = 0;
    m_configuration.certificate = m_folder / "server.crt";
    m_configuration.privateKey = m_folder / "server.key";
    m_configuration.users = m_folder / "users";
    m_configuration.tokenKey = std::string(server::TokenKey::shortestSecret, 'k');
    m_configuration.handshakeTime = 500ms;
    m_configuration.headerTime = 500ms;
    m_configuration.bodyTime = 500ms;
    m_configuration.idleTime = 1s;
    m_configuration.writeTime = 500ms;
    m_configuration.drainTime = {};
    m_configuration.stopTime = 100ms;
    m_configuration.databases.push_back({ "main", server::test::numbersDatabase().url() });
    m_configuration.databases.back().statementTime = 250ms;
    m_configuration.databases.back().workers = 4;
    server::makeLocalCertificate(m_configuration.certificate, m_configuration.privateKey);
    m_certificate = server::test::contentOf(m_configuration.certificate);
    server::writeUsers(m_configuration.users, { { "ann", { .hash = cheapHash() } } });
}

Findings simulate(const World &world, std::uint64_t seed, const Size &size) { return Simulation(world, seed, size).run(); }

} // namespace simulation
