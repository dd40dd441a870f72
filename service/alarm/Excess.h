#pragma once

#include "alarm/QuantityLimits.h"
#include "alarm/Thresholds.h"
#include "domain/AlarmDetail.h"
#include "time/Instant.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice {

/// Time and count, which tell a reading from the others of its point.
using ReadingKey = std::pair<Instant, std::int32_t>;

/// A sample as it is judged.
struct Reading
{
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes; ///< of the time as it was written
    double value = 0;

    ReadingKey key() const { return {time, count}; }
};

/// A point location as its readings are judged.
struct JudgedPoint
{
    std::int64_t key = 0;
    std::string name;
    std::string depth;
    double reference = 0; ///< its initial value, or its earliest reading when it has none
};

/// A reading that passes a limit of a group.
struct Excess
{
    std::shared_ptr<const JudgedPoint> point;
    Reading reading;
    const LimitingGroup* group = nullptr;
    Variation variation;
};

/// The worst of the readings shown to it.
class WorstReadings
{
public:
    void consider(const Excess& excess);

    bool isEmpty() const { return !m_total && !m_daily; }

    /// That with the greatest total excess and that with the greatest daily excess, one or both.
    std::vector<Excess> excesses() const;

private:
    std::optional<Excess> m_total;
    std::optional<Excess> m_daily;
};

/// Of details of one point name in one alarm those that stand for it: that with the greatest total excess,
/// and that with the greatest daily excess when the first one's is less. Daily excesses are compared in the
/// unit of the values. Of equals the earliest reading counts, then depth and group decide: the choice does
/// not depend on the order.
std::vector<AlarmDetail> worstOf(const std::vector<AlarmDetail>& details);

} // namespace monitorservice
