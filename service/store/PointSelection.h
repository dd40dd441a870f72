#pragma once

#include "domain/Sample.h"
#include "store/StoreInterface.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace monitorservice {

/// A point that was found. The views end with the visit.
struct FoundPoint
{
    std::int64_t key = 0; ///< as Measurements knows it; never leaves the service
    std::string_view id;
    std::string_view category; ///< of its monitoring
    std::string_view name;
    std::string_view depth;
    std::string_view links;    ///< its relations, a JSON array
    std::string_view document; ///< one JSON object, without category and samples
};

/// The last chosen sample of a day.
struct DayValue
{
    std::int64_t day = 0; ///< days since 1970-01-01 in the project's time zone
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes;
    double value = 0;
};

/// What stands for the samples of a point. What was not asked for is absent.
struct PointSummary
{
    std::optional<Sample> latest;   ///< of the chosen ones
    std::optional<double> earliest; ///< value of the earliest of all its samples
    std::optional<double> smallest; ///< of the last values of its days, all of them
    std::optional<double> largest;  ///< alike
};

/// What is asked for of it.
struct SummaryParts
{
    bool latest = false;
    bool earliest = false;
    bool extremes = false; ///< the smallest and the largest
};

/// The points that a query chooses, and the samples that it chooses of each.
///
/// The conditions of the query on "time" and "data.timeFlag" are asked of every sample: of a point those are
/// chosen that meet all of these conditions. When there are such conditions, a point without a chosen sample
/// is not chosen. All other conditions are asked of the point's document with its "category", its relations
/// as "entity", their identifiers as "uuid", and, where a condition asks for that, its samples as "data".
///
/// Every member may throw StoreError and QueryError; the patterns of the query have one budget for all of
/// them. A visitor must not call into the selection or its session: points come with their samples in one
/// visit, so that a database can be asked for those of many points while the first ones are taken in.
class PointSelection : public StoreInterface
{
public:
    using PointVisitor = std::function<void(const FoundPoint& point)>;
    /// False when the point's samples are not wanted: they are not read then.
    using PointChooser = std::function<bool(const FoundPoint& point)>;
    using SampleVisitor = std::function<void(const Sample& sample)>;
    using DayVisitor = std::function<void(const DayValue& day)>;
    using SummaryChooser = std::function<SummaryParts(const FoundPoint& point)>;
    using SummaryVisitor = std::function<void(const PointSummary& summary)>;

    /// Reads neither the query's skip nor its limit.
    virtual std::uint64_t count() = 0;
    /// The page in the query's order; "data.time" stands for the time of a point's newest chosen sample.
    virtual void visit(const PointVisitor& visitor) = 0;
    /// The same page, and behind each point its chosen samples in the order of time and count.
    virtual void visitSamples(const PointChooser& point, const SampleVisitor& sample) = 0;
    /// The same page, and behind each point the last chosen sample of each day, days ascending. Whole days
    /// are read from what is kept of each day, not from the samples, unless a sample's flag or an unusual
    /// condition on its time matters.
    virtual void visitDays(const PointChooser& point, const DayVisitor& day) = 0;
    /// The same page, and behind each point what its samples come to; never more of them are read than the
    /// parts need, however many it has. The extremes are read from what is kept of each day.
    virtual void visitSummaries(const SummaryChooser& point, const SummaryVisitor& summary) = 0;
};

} // namespace monitorservice
