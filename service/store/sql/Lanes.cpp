#include "store/sql/Lanes.h"

#include <algorithm>
#include <string_view>

namespace monitorservice {

namespace {

// FNV-1a of 64 bits (http://www.isthe.com/chongo/tech/comp/fnv): std::hash may differ from build to build.
constexpr std::uint64_t hashOfNothing = 0xcbf29ce484222325;
constexpr std::uint64_t hashPrime = 0x100000001b3;

std::uint64_t hashOn(std::uint64_t hash, std::string_view text)
{
    for (const char letter : text) {
        hash = (hash ^ static_cast<unsigned char>(letter)) * hashPrime;
    }
    return hash;
}

Lane laneOf(const ClaimedTarget& target)
{
    const std::uint64_t hash = hashOn(hashOn(hashOn(hashOfNothing, target.cell), "/"), target.subCategory);
    return static_cast<Lane>(1 + hash % lastLane);
}

bool isEverything(const std::vector<Lane>& lanes)
{
    return lanes.front() == allLanes;
}

} // namespace

std::vector<Lane> lanesOf(const Claim& claim)
{
    if (!claim.targets) {
        return {allLanes};
    }
    std::vector<Lane> lanes;
    lanes.reserve(claim.targets->size());
    for (const ClaimedTarget& target : *claim.targets) {
        lanes.push_back(laneOf(target));
    }
    std::sort(lanes.begin(), lanes.end());
    lanes.erase(std::unique(lanes.begin(), lanes.end()), lanes.end());
    return lanes;
}

bool meet(const std::vector<Lane>& one, const std::vector<Lane>& other)
{
    if (isEverything(one) || isEverything(other)) {
        return true;
    }
    return std::find_first_of(one.begin(), one.end(), other.begin(), other.end()) != one.end();
}

} // namespace monitorservice
