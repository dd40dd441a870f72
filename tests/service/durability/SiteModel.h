#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// Where deliveries of the tests go: a monitoring with one of its sub-categories.
struct Target
{
    std::string cell;
    std::string subCategory;
};

/// The limits of one group, as docs/service.md describes them.
struct GroupLimits
{
    int dayVarType = 0;
    double dayVarValue = 0;
    double totalVar = 0;
};

/// What the tests deliver to.
struct Site
{
    /// Its clock is 5:30 h ahead of UTC all the year, so that days can be counted without a time zone
    /// database.
    static constexpr const char* timeZone = "Asia/Kolkata";
    static constexpr int offsetMinutes = 330;

    std::string project;
    std::string token;
    std::vector<Target> targets;
    /// The groups of each target; they list every point but those of isWithoutLimits().
    std::vector<std::vector<GroupLimits>> groups;

    static bool isWithoutLimits(const std::string& pointName) { return pointName.back() == '0'; }
};

struct PointKey
{
    std::size_t target = 0;
    std::string name;
    std::string depth;

    bool operator<(const PointKey& other) const;
};

struct SampleKey
{
    std::int64_t time = 0; ///< milliseconds since 1970 in UTC
    std::int32_t count = 0;

    bool operator<(const SampleKey& other) const;
};

struct SampleValue
{
    double value = 0;
    std::string timeFlag;
    std::optional<int> offsetMinutes; ///< of the time as it is written; nothing: "Z"
};

using Samples = std::map<SampleKey, SampleValue>;

/// The points of one request; `fileId` is unlike that of any other.
struct SentDelivery
{
    struct Point
    {
        PointKey key;
        double initialValue = 0; ///< 0 leaves what the point has
        Samples samples;
    };

    std::string fileId;
    std::vector<Point> points;
};

/// The body of the request.
std::string toJson(const SentDelivery& delivery, const Site& site, bool isNested);

/// What the service must hold after some deliveries: computed from the description of deliveries, days and
/// alarms, without the service's code. Only one client writes the points of a model; several share the
/// targets.
class SiteModel
{
public:
    struct Point
    {
        double initialValue = 0;
        Samples samples;
    };

    struct History
    {
        std::size_t target = 0;
        std::string fileId;
        std::size_t rows = 0;
        std::size_t inserted = 0;
    };

    /// What is known of a day: its last sample, and how many it has.
    struct Day
    {
        SampleKey last;
        SampleValue value;
        std::size_t samples = 0;
    };

    explicit SiteModel(const Site& site) : m_site(&site) {}

    void apply(const SentDelivery& delivery);

    const std::map<PointKey, Point>& points() const { return m_points; }
    const std::vector<History>& histories() const { return m_histories; }
    /// One text for each alarm with all its details; equal texts are equal alarms.
    const std::vector<std::string>& alarms() const { return m_alarms; }

    static std::map<std::int64_t, Day> daysOf(const Samples& samples);

private:
    struct NewDays;
    struct Excess;

    std::optional<NewDays> merge(const SentDelivery::Point& sent, History& history, bool& isChanged);
    std::optional<Excess> worstOf(const NewDays& days) const;
    void raiseAlarm(std::size_t target, const std::vector<NewDays>& evaluated);
    std::string depthsText(const Excess& excess) const;

    const Site* m_site;
    std::map<PointKey, Point> m_points;
    std::vector<History> m_histories;
    std::vector<std::string> m_alarms;
};

/// "2026-01-05T10:15:00.000+05:30", or with "Z".
std::string timeText(std::int64_t milliseconds, std::optional<int> offsetMinutes);
/// Digits that tell any two numbers apart.
std::string numberText(double number);
/// How alarms() and the inspection of a data file write a depth and a detail.
std::string alarmDepthText(const std::string& depth, double total, std::int64_t count,
                           const std::string& time);
std::string alarmDetailText(const std::string& name, const std::string& depth, double total,
                            std::optional<double> day, double totalBeyond, double dayBeyond,
                            std::int64_t count, const std::string& time, const std::string& depths);

} // namespace monitorservice::test
