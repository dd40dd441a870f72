#pragma once

#include "domain/Group.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What a client sends of a group; a member that it did not send is absent.
struct GroupBody
{
    std::optional<std::string> project;
    std::optional<std::string> cell;
    std::optional<std::string> subCategory;
    std::optional<std::string> name;
    std::optional<std::vector<std::string>> points;
    std::optional<std::int32_t> dayVariationType;
    std::optional<double> dayVariation;
    std::optional<double> totalVariation;
    std::optional<LimitSide> daySide;
    std::optional<LimitSide> totalSide;
    std::optional<double> warningLevel;
};

/// Reads the body of a POST or PUT. Throws ApiError 400 that names the member.
GroupBody parseGroupBody(std::string_view json);

/// Takes over the members that were sent, but for the project. Gives whether anything changed.
bool applyTo(Group& group, const GroupBody& body);

} // namespace monitorservice
