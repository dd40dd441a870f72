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
/// limits, without the service's code. Only one client writes the points of a model; several share the
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
        std::size_t corrected = 0;
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
    /// Takes the delivery of this file back in one target; `before` is the model as it was before it.
    void takeBack(std::size_t target, const std::string& fileId, const SiteModel& before);
    void removePoint(const PointKey& key);
    /// Removes those from the first instant to before the second.
    void removeSamples(const PointKey& key, std::int64_t from, std::int64_t before);

    const std::map<PointKey, Point>& points() const { return m_points; }
    const std::vector<History>& histories() const { return m_histories; }
    /// A text for each reading that is in excess, and one for each point name with its greatest excesses.
    std::vector<std::string> excesses() const;

    static std::map<std::int64_t, Day> daysOf(const Samples& samples);

private:
    struct Worst;

    bool merge(const SentDelivery::Point& sent, History& history);
    void judge(const PointKey& key, const Point& point, std::map<std::string, Worst>& worst,
               std::vector<std::string>& texts) const;

    const Site* m_site;
    std::map<PointKey, Point> m_points; ///< those that exist, without samples too
    std::vector<History> m_histories;
};

/// "2026-01-05T10:15:00.000+05:30", or with "Z".
std::string timeText(std::int64_t milliseconds, std::optional<int> offsetMinutes);
/// Digits that tell any two numbers apart.
std::string numberText(double number);
/// How excesses() and the inspection of a data file write a reading, and the worst of a name; the daily
/// excess is in the unit of the values.
std::string excessText(const PointKey& point, const SampleKey& sample);
std::string worstText(std::size_t target, const std::string& name, double totalExcess, double dailyExcess);

} // namespace monitorservice::test
