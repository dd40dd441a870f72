#pragma once

#include "ServedStore.h"

#include <functional>
#include <string>
#include <vector>

namespace monitorservice::bench {

/// A request for a list of project "p".
struct Read
{
    std::string name;
    ServedStore* served;
    std::string list;       ///< "cells", "pointLocations", …
    std::string parameters; ///< "limit=100&" or nothing
    std::string where;
    /// Whether the body is what was asked for; tried once, and every later body has to be the same bytes.
    std::function<bool(const std::string& body)> isRight;
};

/// Milliseconds over all rounds, and the bytes of the answer.
struct Timing
{
    double median;
    double least;
    double most;
    std::size_t bytes;
};

/// Does the requests in interleaved rounds, after one that does not count. Throws std::runtime_error for an
/// answer that is not right.
std::vector<Timing> timeReads(const std::vector<Read>& reads, int rounds);

/// Does the same and prints it, a line for each request.
void printReads(const std::string& title, const std::vector<Read>& reads, int rounds);

} // namespace monitorservice::bench
