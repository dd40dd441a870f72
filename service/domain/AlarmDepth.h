#pragma once

#include "domain/Document.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// What a point of an alarm measured at one of its depths.
struct AlarmDepth
{
    std::string id;
    std::string detail;
    std::string point;      ///< name of the point location
    std::int64_t count = 0; ///< of the sample
    std::string time;       ///< of the sample
    double total = 0;       ///< total variation
    std::string depth;
};

/// The document under which it is stored and answered.
std::string toDocument(const AlarmDepth& alarmDepth);

template <>
AlarmDepth fromDocument<AlarmDepth>(std::string_view text);

} // namespace monitorservice
