#pragma once

#include "store/Store.h"

#include <cstdint>
#include <functional>
#include <string>

namespace monitorservice {

/// How much was read, and how much of it contradicts itself.
struct CheckedSamples
{
    std::uint64_t points = 0;
    std::uint64_t samples = 0;
    std::uint64_t days = 0; ///< of all points together
    std::uint64_t flaws = 0;
};

/// Reads every sample that a store holds and compares what is kept of them besides (see InspectedPoint).
/// `tell` is given a line for each flaw, which names project, monitoring, sub-category and point. What is
/// read of a point is of one moment. Throws StoreError when the store itself cannot be read.
CheckedSamples checkSamples(Store& store, const std::function<void(const std::string& flaw)>& tell);

} // namespace monitorservice
