#pragma once

#include <functional>
#include <string>
#include <vector>

/// One side of a comparison: what it does, and how long that took in each round.
struct Side {
    std::string name;
    std::function<void()> work;
    std::vector<double> milliseconds {};
    std::function<void()> prepare {}; ///< done before each round, not measured
};

/// Runs all sides in turn, `rounds` times.
void runInTurn(std::vector<Side> &sides, int rounds);

double median(std::vector<double> values);

/// Prints how many times as long as `base` this side took: the median of the rounds, the smallest and the largest, beside the goal.
void printRatio(const Side &side, const Side &base, double goal);

/// False when two busy threads get less than 1.9 times the work of one done: no verdict holds then.
bool machineIsQuiet();
