#pragma once

#include <functional>
#include <string>
#include <vector>

/// One way to do a thing.
struct Contestant
{
    std::string name;
    std::function<void()> operation; ///< done once
    int oneIn = 1; ///< of the operations of a round only one in so many is done: for what is slow
};

/// Runs the operations in interleaved rounds, so that what else the machine does meets all of them alike, and
/// prints per contestant the median over the rounds of the time of one operation, and of its ratio to the
/// first one's in the same round.
void runContest(const std::string& title, const std::vector<Contestant>& contestants, int rounds,
                int operationsPerRound);
