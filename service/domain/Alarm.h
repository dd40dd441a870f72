#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// That points of a monitoring and sub-category exceeded their limits.
struct Alarm
{
    std::string id;
    std::string project;
    std::string cell;
    std::string cellName;
    std::string subCategory;
    std::string raisedAt;        ///< as isoText() writes it
    std::int64_t pointCount = 0; ///< points with a detail
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const Alarm& alarm);

template <>
Alarm fromDocument<Alarm>(std::string_view text);

} // namespace monitorservice
