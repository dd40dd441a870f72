#pragma once

#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// What deliveries go to: a sub-category of a monitoring.
struct ClaimedTarget
{
    std::string cell;
    std::string subCategory;
};

/// What a session that writes has to itself.
struct Claim
{
    /// Only what is delivered for these, or follows from it: points with their samples and days, data manages
    /// with their histories, alarms with their details and notices. Not empty; nothing: everything.
    std::optional<std::vector<ClaimedTarget>> targets;
};

} // namespace monitorservice
