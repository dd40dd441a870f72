#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// That readings of a monitoring and sub-category, found on one day, are beyond their limits.
struct Alarm
{
    std::string id;
    std::string project;
    std::string cell;
    std::string cellName;
    std::string subCategory;
    std::string raisedAt;        ///< as isoText() writes it
    std::string day;             ///< of the project on which it was raised, such as "2026-11-22"
    std::int64_t pointCount = 0; ///< point names with a detail
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const Alarm& alarm);

template <>
Alarm fromDocument<Alarm>(std::string_view text);

} // namespace monitorservice
