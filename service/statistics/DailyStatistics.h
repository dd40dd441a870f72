#pragma once

#include "store/PointSelection.h"
#include "time/LocalDays.h"

#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// Turns the days of each point into the points of each day.
class DailyStatistics
{
public:
    /// What is added from now on is of this point.
    void beginPoint(const FoundPoint& point);
    void add(const DayValue& value);
    /// The number of values added.
    std::size_t size() const { return m_values.size(); }

    /// A JSON array of the days that have values, rising: objects with the "time" at which the day begins,
    /// with the offset of that moment, and as "data" the values, objects with "_id", "name", "depth",
    /// "count", "value", "time" and "entity". Within a day points go by name, then by depth as a number (one
    /// that is no number comes last), then by identifier.
    std::string text(LocalDays& days);

private:
    struct Point
    {
        std::string id;
        std::string name;
        std::string depth;
        std::string begin; ///< JSON before and after what the days differ in
        std::string end;
    };
    struct Value
    {
        std::size_t point;
        DayValue day;
    };

    static bool isBefore(const Point& left, const Point& right);
    std::vector<std::size_t> ranks() const;
    void appendValue(std::string& out, const Value& value) const;

    std::vector<Point> m_points;
    std::vector<Value> m_values;
};

} // namespace monitorservice
