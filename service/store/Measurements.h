#pragma once

#include "domain/Sample.h"
#include "store/DocumentQuery.h"
#include "store/PointSelection.h"
#include "store/StoreInterface.h"
#include "store/StoredDocument.h"
#include "time/DayPeriod.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// A point that is about to be looked for, and days of which samples are about to be changed, ascending.
struct ExpectedPoint
{
    std::string name;
    std::string depth;
    std::vector<DayPeriod> days;
};

/// The samples of the point locations, and what is kept of each day: that is what the day's samples give, at
/// any time. Every member may throw StoreError. A visitor must not call into the session, as with
/// Documents::Visitor.
class Measurements : public StoreInterface
{
public:
    using SampleVisitor = std::function<void(const Sample& sample)>;
    using KeptVisitor = std::function<void(const KeptSample& sample)>;
    using DayVisitor = std::function<void(const DaySummary& day)>;
    using PointVisitor = std::function<void(const StoredPoint& point)>;
    using DeliveredToVisitor = std::function<void(const DeliveredTo& point)>;

    /// Says which points of a monitoring and sub-category findPoint() is about to be asked for, each of them
    /// once, and which of their days are about to change, so that they can be read at once where reading
    /// takes long. No answer depends on it.
    virtual void expect(const std::string& cell, const std::string& subCategory,
                        const std::vector<ExpectedPoint>& points) = 0;
    /// Depths are compared as settledDepth() writes them.
    virtual std::optional<StoredPoint> findPoint(const std::string& cell, const std::string& subCategory,
                                                 const std::string& name, const std::string& depth) const = 0;
    /// The points of this name, by ascending depth as text, byte by byte.
    virtual void visitPoints(const std::string& cell, const std::string& subCategory, const std::string& name,
                             const PointVisitor& visitor) const = 0;
    /// The point of the monitoring and sub-category that has the latest sample; nothing when none has any.
    virtual std::optional<StoredPoint> latestPoint(const std::string& cell,
                                                   const std::string& subCategory) const = 0;
    /// Every point of the monitoring and sub-category that the delivery of this number or a later one has
    /// changed, in the order of names and depths, byte by byte; there may be others among them.
    virtual void visitDeliveredTo(const std::string& cell, const std::string& subCategory,
                                  std::int64_t delivery, const DeliveredToVisitor& visitor) const = 0;
    /// Gives the point's key. The document's "_id" and "projectId" are `id` and `project`; `delivery` is the
    /// number of the delivery that makes it.
    /// StoreFailure::Conflict when the identifier is taken, when the monitoring and sub-category have a point
    /// of this name and depth, and when the monitoring or the sub-category does not exist.
    virtual std::int64_t insertPoint(const std::string& project, const std::string& id,
                                     const std::string& document, std::int64_t delivery) = 0;
    /// `lastTime` is the time of the point's latest sample, "lastDate" in the document; nothing when it has
    /// none. What the point is found by stays: monitoring, sub-category, name and depth. `delivery` is the
    /// number of the latest delivery that has changed it; nothing: that is the same as before.
    virtual void replacePoint(std::int64_t point, const std::string& document,
                              const std::optional<Instant>& lastTime,
                              const std::optional<std::int64_t>& delivery) = 0;
    /// Removes the point with its samples and days. StoreFailure::Conflict while a reading of it is in
    /// excess.
    virtual void removePoint(std::int64_t point) = 0;
    /// Gives the point these relations, a JSON array as it is stored, and writes the change down; false when
    /// it has them already and nothing is changed. A clock that was set back does not make a change older
    /// than the one before.
    virtual bool replaceLinks(std::int64_t point, const std::string& links, Instant when,
                              const std::string& who) = 0;
    /// Points and samples by a condition. The session must outlive the selection, and has one at a time;
    /// while it does, the session is read through it alone, and nothing is written.
    virtual std::unique_ptr<PointSelection> select(const DocumentQuery& query) const = 0;

    /// The first in the order of time and count.
    virtual std::optional<Sample> earliestSample(std::int64_t point) const = 0;
    /// The last in that order.
    virtual std::optional<Sample> latestSample(std::int64_t point) const = 0;
    virtual std::optional<Sample> findSample(std::int64_t point, Instant time, std::int32_t count) const = 0;
    /// Samples from the first instant to before the second, in the order of time and count.
    virtual void visitSamples(std::int64_t point, Instant from, Instant before,
                              const SampleVisitor& visitor) const = 0;
    /// All of them with the deliveries that have inserted them, in the same order.
    virtual void visitKept(std::int64_t point, const KeptVisitor& visitor) const = 0;
    /// Those that the delivery of this number has inserted, in the same order.
    virtual void visitSamplesOf(std::int64_t point, std::int64_t delivery,
                                const SampleVisitor& visitor) const = 0;
    /// The numbers of the deliveries that have made the point or inserted samples held, the latest first.
    virtual std::vector<std::int64_t> deliveriesOf(std::int64_t point) const = 0;
    /// False when the point has a sample of this time and count; nothing is changed then. `delivery` is the
    /// number of the delivery that inserts it. Here and below `day` is the one that the time lies in; all
    /// samples of a point come with days of the same time zone. It costs least when the samples of a point's
    /// day come one after another.
    virtual bool insertSample(std::int64_t point, const DayPeriod& day, const Sample& sample,
                              std::int64_t delivery) = 0;
    /// Gives the sample of this time and count the value and the flag; its offset stays. Nothing is changed
    /// when there is no such sample.
    virtual void replaceSample(std::int64_t point, const DayPeriod& day, const Sample& sample) = 0;
    /// Nothing is changed when there is no such sample.
    virtual void removeSample(std::int64_t point, const DayPeriod& day, Instant time, std::int32_t count) = 0;

    /// Days from the first to the last one named, both included, ascending.
    virtual void visitDays(std::int64_t point, std::int64_t first, std::int64_t last,
                           const DayVisitor& visitor) const = 0;
    /// The latest day before the one named that has samples.
    virtual std::optional<DaySummary> latestDayBefore(std::int64_t point, std::int64_t day) const = 0;
    /// The earliest day after the one named that has samples.
    virtual std::optional<DaySummary> earliestDayAfter(std::int64_t point, std::int64_t day) const = 0;

    /// Removes all that was delivered for the monitoring and sub-category or followed from it: points,
    /// samples, days, the data manage with its history, alarms with their details. Groups stay.
    virtual void removeDelivered(const std::string& cell, const std::string& subCategory) = 0;
};

} // namespace monitorservice
