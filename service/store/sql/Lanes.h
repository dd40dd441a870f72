#pragma once

#include "store/Claim.h"

#include <cstdint>
#include <vector>

namespace monitorservice {

/// Sessions that write go side by side in lanes, each lane had by one of them at a time. What is delivered
/// for a monitoring and sub-category always goes in the same lane, whatever else goes there: two that meet by
/// chance wait for each other without need, and that is all. Lanes, unlike monitorings, are so few that what
/// is kept of each of them is read in no time.
using Lane = std::uint16_t;

constexpr Lane allLanes = 0; ///< that of a session which has everything to itself
constexpr Lane lastLane = 0xfff;

/// Rising, each once; {allLanes} for a claim of everything. The same in every process and version: services
/// of both stores and at one database must agree.
std::vector<Lane> lanesOf(const Claim& claim);

/// Whether sessions in these lanes must not write at once.
bool meet(const std::vector<Lane>& one, const std::vector<Lane>& other);

} // namespace monitorservice
