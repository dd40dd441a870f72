#include "SiteModel.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <tuple>

namespace monitorservice::test {

namespace {

constexpr std::int64_t millisecondsPerMinute = 60'000;
constexpr std::int64_t millisecondsPerDay = 24 * 60 * millisecondsPerMinute;

// The times of the tests lie after 1970.
std::int64_t dayOf(const SampleKey& sample)
{
    return (sample.time + Site::offsetMinutes * millisecondsPerMinute) / millisecondsPerDay;
}

std::string pointJson(const SentDelivery::Point& point, const SentDelivery& delivery, const Site& site)
{
    const Target& target = site.targets.at(point.key.target);
    std::string json = R"({"cellId":")" + target.cell + R"(","subCategoryId":")" + target.subCategory +
                       R"(","name":")" + point.key.name + R"(","depth":")" + point.key.depth +
                       R"(","fileId":")" + delivery.fileId + R"(","initialValue":)" +
                       numberText(point.initialValue) + R"(,"data":[)";
    const char* separator = "";
    for (const auto& [key, value] : point.samples) {
        json += separator;
        json += R"({"count":)" + std::to_string(key.count) + R"(,"time":")" +
                timeText(key.time, value.offsetMinutes) + R"(","value":)" + numberText(value.value) +
                R"(,"timeFlag":")" + value.timeFlag + "\"}";
        separator = ",";
    }
    return json + "]}";
}

struct Variations
{
    double total = 0;
    std::optional<double> day;
    double totalBeyond = 0;
    double dayBeyond = 0;
    double severity = 0;
};

Variations variationsOf(double initial, const SiteModel::Day& day,
                        const std::optional<std::pair<std::int64_t, SiteModel::Day>>& before,
                        std::int64_t number, const GroupLimits& limits)
{
    Variations result;
    result.total = day.value.value - initial;
    if (before && (limits.dayVarType == 0 || initial != 0)) {
        result.day =
            (day.value.value - before->second.value.value) / static_cast<double>(number - before->first);
        if (limits.dayVarType == 1) {
            *result.day = *result.day / std::abs(initial) * 100;
        }
    }
    const auto compare = [&result](double variation, double limit, double& beyond) {
        if (limit > 0) {
            beyond = std::max(std::abs(variation) - limit, 0.0);
            result.severity = std::max(result.severity, std::abs(variation) / limit);
        }
    };
    compare(result.total, limits.totalVar, result.totalBeyond);
    compare(result.day.value_or(0), limits.dayVarValue, result.dayBeyond);
    return result;
}

} // namespace

bool PointKey::operator<(const PointKey& other) const
{
    return std::tie(target, name, depth) < std::tie(other.target, other.name, other.depth);
}

bool SampleKey::operator<(const SampleKey& other) const
{
    return std::tie(time, count) < std::tie(other.time, other.count);
}

// The days of one point that a delivery has brought anything new of.
struct SiteModel::NewDays
{
    PointKey point;
    std::int64_t first = 0;
    std::int64_t last = 0;
};

struct SiteModel::Excess
{
    PointKey point;
    std::int64_t number = 0;
    Day day;
    Variations variations;
};

std::string timeText(std::int64_t milliseconds, std::optional<int> offsetMinutes)
{
    const std::int64_t local = milliseconds + offsetMinutes.value_or(0) * millisecondsPerMinute;
    const std::time_t seconds = local / 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03d", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(local % 1000));
    std::string result = text.data();
    if (!offsetMinutes) {
        return result + 'Z';
    }
    std::snprintf(text.data(), text.size(), "%c%02d:%02d", *offsetMinutes < 0 ? '-' : '+',
                  std::abs(*offsetMinutes) / 60, std::abs(*offsetMinutes) % 60);
    return result + text.data();
}

std::string numberText(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.17g", number);
    return text.data();
}

std::string alarmDepthText(const std::string& depth, double total, std::int64_t count,
                           const std::string& time)
{
    return " {" + depth + ' ' + numberText(total) + ' ' + std::to_string(count) + ' ' + time + '}';
}

std::string alarmDetailText(const std::string& name, const std::string& depth, double total,
                            std::optional<double> day, double totalBeyond, double dayBeyond,
                            std::int64_t count, const std::string& time, const std::string& depths)
{
    return " [" + name + " depth " + depth + " total " + numberText(total) + " day " +
           (day ? numberText(*day) : "none") + " beyond " + numberText(totalBeyond) + ' ' +
           numberText(dayBeyond) + " at " + std::to_string(count) + ' ' + time + depths + ']';
}

std::string toJson(const SentDelivery& delivery, const Site& site, bool isNested)
{
    std::string json = "[";
    const char* separator = "";
    for (const SentDelivery::Point& point : delivery.points) {
        const std::string object = pointJson(point, delivery, site);
        json += separator + (isNested ? '[' + object + ']' : object);
        separator = ",";
    }
    return json + ']';
}

std::map<std::int64_t, SiteModel::Day> SiteModel::daysOf(const Samples& samples)
{
    std::map<std::int64_t, Day> days;
    for (const auto& [key, value] : samples) {
        Day& day = days[dayOf(key)];
        day = {key, value, day.samples + 1};
    }
    return days;
}

void SiteModel::apply(const SentDelivery& delivery)
{
    std::vector<std::size_t> order;
    std::map<std::size_t, History> histories;
    std::map<std::size_t, std::vector<NewDays>> evaluated;
    std::map<std::size_t, bool> changed;
    for (const SentDelivery::Point& sent : delivery.points) {
        const std::size_t target = sent.key.target;
        History& history =
            histories.try_emplace(target, History{target, delivery.fileId, 0, 0}).first->second;
        if (const std::optional<NewDays> days = merge(sent, history, changed[target])) {
            evaluated[target].push_back(*days);
        }
    }
    for (const auto& [target, history] : histories) {
        if (changed[target]) {
            m_histories.push_back(history);
            raiseAlarm(target, evaluated[target]);
        }
    }
}

std::optional<SiteModel::NewDays> SiteModel::merge(const SentDelivery::Point& sent, History& history,
                                                   bool& isChanged)
{
    const auto [found, isNew] = m_points.try_emplace(sent.key);
    Point& point = found->second;
    isChanged = isChanged || isNew;
    if (sent.initialValue != 0 && sent.initialValue != point.initialValue) {
        point.initialValue = sent.initialValue;
        isChanged = true;
    }
    std::optional<NewDays> days;
    history.rows += sent.samples.size();
    for (const auto& [key, value] : sent.samples) {
        const auto latest = point.samples.empty() ? SampleKey() : point.samples.rbegin()->first;
        const auto [held, isInserted] = point.samples.try_emplace(key, value);
        if (!isInserted && held->second.value == value.value && held->second.timeFlag == value.timeFlag) {
            continue;
        }
        isChanged = true;
        history.inserted += isInserted ? 1 : 0;
        held->second.value = value.value;
        held->second.timeFlag = value.timeFlag;
        if (!(key < latest)) {
            days = NewDays{sent.key, days ? days->first : dayOf(key), dayOf(key)};
        }
    }
    return days;
}

std::optional<SiteModel::Excess> SiteModel::worstOf(const NewDays& days) const
{
    const Point& point = m_points.at(days.point);
    std::optional<Excess> worst;
    std::optional<std::pair<std::int64_t, Day>> before;
    for (const auto& [number, day] : daysOf(point.samples)) {
        if (number >= days.first && number <= days.last) {
            for (const GroupLimits& limits : m_site->groups.at(days.point.target)) {
                const Variations found = variationsOf(point.initialValue, day, before, number, limits);
                const bool isOver = found.totalBeyond > 0 || found.dayBeyond > 0;
                if (isOver && (!worst || found.severity > worst->variations.severity)) {
                    worst = Excess{days.point, number, day, found};
                }
            }
        }
        before = {number, day};
    }
    return worst;
}

void SiteModel::raiseAlarm(std::size_t target, const std::vector<NewDays>& evaluated)
{
    std::map<std::string, Excess> byName;
    for (const NewDays& days : evaluated) {
        if (Site::isWithoutLimits(days.point.name)) {
            continue;
        }
        if (const std::optional<Excess> found = worstOf(days)) {
            const auto [worst, isFirst] = byName.try_emplace(found->point.name, *found);
            if (!isFirst && found->variations.severity > worst->second.variations.severity) {
                worst->second = *found;
            }
        }
    }
    if (byName.empty()) {
        return;
    }
    std::string text = std::to_string(target);
    for (const auto& [name, excess] : byName) {
        const Variations& found = excess.variations;
        const Day& day = excess.day;
        text += alarmDetailText(name, excess.point.depth, found.total, found.day, found.totalBeyond,
                                found.dayBeyond, day.last.count,
                                timeText(day.last.time, day.value.offsetMinutes), depthsText(excess));
    }
    m_alarms.push_back(text);
}

std::string SiteModel::depthsText(const Excess& excess) const
{
    std::string text;
    std::size_t depths = 0;
    for (const auto& [key, point] : m_points) {
        if (key.target != excess.point.target || key.name != excess.point.name) {
            continue;
        }
        const std::map<std::int64_t, Day> days = daysOf(point.samples);
        const auto after = days.upper_bound(excess.number);
        if (after != days.begin()) {
            const Day& day = std::prev(after)->second;
            text += alarmDepthText(key.depth, day.value.value - point.initialValue, day.last.count,
                                   timeText(day.last.time, day.value.offsetMinutes));
            ++depths;
        }
    }
    return depths > 1 ? text : std::string();
}

} // namespace monitorservice::test
