#pragma once

#include "domain/Document.h"
#include "domain/LimitSide.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// A reading of an alarm that is beyond a limit of a group: the worst of its point name.
struct AlarmDetail
{
    std::string id;
    std::string alarm;
    std::string point;      ///< name of the point location
    std::string total;      ///< total variation, digits without an exponent
    std::string daily;      ///< daily variation alike; empty when there is none
    double totalExcess = 0; ///< by how much the total variation is beyond its limit; 0: it is not
    double dailyExcess = 0; ///< the same of the daily variation
    bool hasDepths = false; ///< there is an AlarmDepth for each depth
    bool isInclinometer = false;
    std::int64_t count = 0; ///< of the sample
    std::string time;       ///< of the sample
    std::string depth;      ///< empty: the point has none
    std::string raisedAt;   ///< when it was found
    double value = 0;       ///< the reading
    double reference = 0;   ///< what the variations are counted from
    std::string unit;       ///< of the sub-category; may be empty
    std::string group;      ///< whose limits these are
    std::string groupName;
    double totalLimit = 0; ///< 0: none
    double dayLimit = 0;   ///< alike
    LimitSide totalSide = LimitSide::Both;
    LimitSide daySide = LimitSide::Both;
    std::int32_t dayVariationType = 0; ///< as Group has it
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const AlarmDetail& alarmDetail);

template <>
AlarmDetail fromDocument<AlarmDetail>(std::string_view text);

} // namespace monitorservice
