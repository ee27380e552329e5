// Runs simulated networks of clients and servers: network_simulation [--runs N] [--seed S] [--jobs J] [--trace]. Seeds count up from S.
// Ends with 1 and says which seeds broke a rule.

#include "tests/simulation/simulation.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <thread>

namespace {

struct Options {
    std::uint64_t runs = 1;
    std::uint64_t seed = 1;
    int jobs = 1;
    bool showsTrace = false;
};

Options optionsOf(int argc, char **argv)
{
    Options options;
    for (int at = 1; at < argc; ++at) {
        const std::string_view name = argv[at];
        if (name == "--trace") {
            options.showsTrace = true;
            continue;
        }
        const char *const value = at + 1 < argc ? argv[++at] : "";
        if (name == "--runs")
            options.runs = std::strtoull(value, nullptr, 10);
        else if (name == "--seed")
            options.seed = std::strtoull(value, nullptr, 10);
        else if (name == "--jobs")
            options.jobs = std::atoi(value);
        else
            options.runs = 0;
    }
    return options;
}

/// What all runs together have given.
class Totals {
public:
    void add(std::uint64_t seed, const simulation::Findings &findings, bool showsTrace)
    {
        const std::lock_guard lock(m_mutex);
        ++m_runs;
        m_failed += findings.violations.empty() ? 0 : 1;
        for (const std::string &violation : findings.violations)
            std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), violation.c_str());
        if (showsTrace)
            for (const std::string &line : findings.trace)
                std::printf("%s\n", line.c_str());
        for (const auto &[outcome, count] : findings.outcomes)
            m_all.outcomes[outcome] += count;
        m_all.connections += findings.connections;
        m_all.repeated += findings.repeated;
        m_all.restarts += findings.restarts;
        m_all.longestSeconds = std::max(m_all.longestSeconds, findings.longestSeconds);
        if (m_runs % 100 == 0)
            print();
        std::fflush(stdout);
    }
    void print() const
    {
        std::printf("%d runs, %d failed; %d connections, %d restarts, %d statements arrived more than once, longest %.2f s;", m_runs,
            m_failed, m_all.connections, m_all.restarts, m_all.repeated, m_all.longestSeconds);
        for (const auto &[outcome, count] : m_all.outcomes)
            std::printf(" %s %d", outcome.c_str(), count);
        std::printf("\n");
    }
    bool allHeld() const { return m_failed == 0; }

private:
    std::mutex m_mutex {};
    simulation::Findings m_all {};
    int m_runs = 0;
    int m_failed = 0;
};

} // namespace

int main(int argc, char **argv)
{
    const Options options = optionsOf(argc, argv);
    if (options.runs == 0 || options.jobs < 1) {
        std::fprintf(stderr, "network_simulation [--runs N] [--seed S] [--jobs J] [--trace]\n");
        return 2;
    }
    const simulation::World world;
    Totals totals;
    std::atomic<std::uint64_t> next { 0 };
    {
        std::vector<std::jthread> jobs;
        for (int job = 0; job < options.jobs; ++job) {
            jobs.emplace_back([&] {
                for (std::uint64_t run = next++; run < options.runs; run = next++)
                    totals.add(options.seed + run, simulation::simulate(world, options.seed + run, {}), options.showsTrace);
            });
        }
    }
    totals.print();
    return totals.allHeld() ? 0 : 1;
}
