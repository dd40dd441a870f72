#pragma once

#include "domain/Document.h"
#include "domain/LimitSide.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Points of a monitoring with the limits of their variation.
struct Group
{
    std::string id;
    std::string project;
    std::string cell;
    std::string subCategory;
    std::string name;
    std::vector<std::string> points;     ///< names of point locations of the monitoring and the sub-category
    std::int32_t dayVariationType = 0;   ///< 0: in the unit of the values, 1: in percent of the reference
    double dayVariation = 0;             ///< limit of the daily variation; 0: none
    double totalVariation = 0;           ///< limit of the total variation in the unit of the values; 0: none
    std::string viewPort;                ///< nothing sets it yet
    LimitSide daySide = LimitSide::Both; ///< of the daily variation
    LimitSide totalSide = LimitSide::Both; ///< of the total variation
    double warningLevel = 80;              ///< percent of a limit from which on tools warn
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const Group& group);

template <>
Group fromDocument<Group>(std::string_view text);

} // namespace monitorservice
