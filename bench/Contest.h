#pragma once

#include <functional>
#include <string>
#include <vector>

/// One way to do a thing.
struct Contestant
{
    std::string name;
    std::function<void()> operation; ///< done once
};

/// Runs the operations in interleaved rounds, so that what else the machine does meets all of them alike, and prints
/// per contestant the median over the rounds of the time of one operation, and its ratio to the first one's.
void runContest(const std::string& title, const std::vector<Contestant>& contestants, int rounds,
                int operationsPerRound);
