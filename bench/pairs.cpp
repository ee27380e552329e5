#include "bench/pairs.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

long spin()
{
    long turns = 0;
    volatile unsigned work = 1;
    for (const auto end = Clock::now() + std::chrono::milliseconds(200); Clock::now() < end; ++turns) {
        for (int step = 0; step < 1'000; ++step)
            work = work * 1'664'525U + 1'013'904'223U;
    }
    return turns;
}

} // namespace

void runInTurn(std::vector<Side> &sides, int rounds)
{
    for (int round = 0; round < rounds; ++round) {
        for (Side &side : sides) {
            if (side.prepare)
                side.prepare();
            const auto start = Clock::now();
            side.work();
            side.milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        }
    }
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void printRatio(const Side &side, const Side &base, double goal)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < side.milliseconds.size(); ++round)
        ratios.push_back(side.milliseconds[round] / base.milliseconds[round]);
    const auto [smallest, largest] = std::ranges::minmax(ratios);
    std::printf("%s / %s: median %.3f, smallest %.3f, largest %.3f; goal %.3f: %s\n", side.name.c_str(), base.name.c_str(), median(ratios),
        smallest, largest, goal, median(ratios) <= goal ? "reached" : "missed");
}

bool machineIsQuiet()
{
    const long alone = spin();
    std::atomic<long> together { 0 };
    std::thread other([&] { together += spin(); });
    together += spin();
    other.join();
    return double(together) >= 1.9 * double(alone);
}
