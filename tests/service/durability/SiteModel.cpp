#include "SiteModel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
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

// By how much a reading passes the limits of a group.
struct Excesses
{
    double total = 0;
    double daily = 0; // in the unit of the values
};

double beyond(double amount, double limit, double value)
{
    const bool isOver = limit > 0 && amount > limit + 1e-9 * std::max(limit, std::abs(value));
    return isOver ? amount - limit : 0;
}

Excesses excessesOf(double reference, double value, const std::optional<double>& perDay,
                    const GroupLimits& limits)
{
    Excesses result;
    result.total = beyond(std::abs(value - reference), limits.totalVar, value);
    if (perDay) {
        const double ofPercent = limits.dayVarType == 1 ? std::abs(reference) / 100 : 1;
        result.daily = beyond(std::abs(*perDay), limits.dayVarValue * ofPercent, value);
    }
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

struct SiteModel::Worst
{
    std::size_t target = 0;
    double total = 0;
    double daily = 0;
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

std::string excessText(const PointKey& point, const SampleKey& sample)
{
    return std::to_string(point.target) + ' ' + point.name + '(' + point.depth + ") " +
           std::to_string(sample.time) + ' ' + std::to_string(sample.count);
}

std::string worstText(std::size_t target, const std::string& name, double totalExcess, double dailyExcess)
{
    std::array<char, 64> amounts{};
    std::snprintf(amounts.data(), amounts.size(), "%.8g %.8g", totalExcess, dailyExcess);
    return std::to_string(target) + ' ' + name + " by " + amounts.data();
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
    std::map<std::size_t, History> histories;
    std::map<std::size_t, bool> changed;
    for (const SentDelivery::Point& sent : delivery.points) {
        const std::size_t target = sent.key.target;
        History& history = histories.try_emplace(target, History{target, delivery.fileId}).first->second;
        changed[target] = merge(sent, history) || changed[target];
    }
    for (const auto& [target, history] : histories) {
        if (changed[target]) {
            m_histories.push_back(history);
        }
    }
}

void SiteModel::takeBack(std::size_t target, const std::string& fileId, const SiteModel& before)
{
    for (auto point = m_points.begin(); point != m_points.end();) {
        const auto was = before.m_points.find(point->first);
        if (point->first.target == target && was == before.m_points.end()) {
            point = m_points.erase(point);
            continue;
        }
        if (point->first.target == target) {
            point->second = was->second;
        }
        ++point;
    }
    m_histories.erase(std::remove_if(m_histories.begin(), m_histories.end(),
                                     [&](const History& history) {
                                         return history.target == target && history.fileId == fileId;
                                     }),
                      m_histories.end());
}

void SiteModel::removePoint(const PointKey& key)
{
    m_points.erase(key);
}

void SiteModel::removeSamples(const PointKey& key, std::int64_t from, std::int64_t before)
{
    Samples& samples = m_points.at(key).samples;
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    samples.erase(samples.lower_bound({from, least}), samples.lower_bound({before, least}));
}

// Gives whether anything is different from before.
bool SiteModel::merge(const SentDelivery::Point& sent, History& history)
{
    const auto [found, isNew] = m_points.try_emplace(sent.key);
    Point& point = found->second;
    bool isChanged = isNew;
    if (sent.initialValue != 0 && sent.initialValue != point.initialValue) {
        point.initialValue = sent.initialValue;
        isChanged = true;
    }
    history.rows += sent.samples.size();
    for (const auto& [key, value] : sent.samples) {
        const auto [held, isInserted] = point.samples.try_emplace(key, value);
        if (!isInserted && held->second.value == value.value && held->second.timeFlag == value.timeFlag) {
            continue;
        }
        isChanged = true;
        (isInserted ? history.inserted : history.corrected) += 1;
        held->second.value = value.value;
        held->second.timeFlag = value.timeFlag;
    }
    return isChanged;
}

std::vector<std::string> SiteModel::excesses() const
{
    std::vector<std::string> texts;
    std::map<std::string, Worst> worst;
    for (const auto& [key, point] : m_points) {
        if (!Site::isWithoutLimits(key.name)) {
            judge(key, point, worst, texts);
        }
    }
    for (const auto& [place, excess] : worst) {
        const std::string name = place.substr(place.find(' ') + 1);
        texts.push_back(worstText(excess.target, name, excess.total, excess.daily));
    }
    return texts;
}

void SiteModel::judge(const PointKey& key, const Point& point, std::map<std::string, Worst>& worst,
                      std::vector<std::string>& texts) const
{
    const std::map<std::int64_t, Day> days = daysOf(point.samples);
    for (const auto& [sample, value] : point.samples) {
        const double reference =
            point.initialValue != 0 ? point.initialValue : point.samples.begin()->second.value;
        const auto day = days.find(dayOf(sample));
        std::optional<double> perDay;
        if (day != days.begin()) {
            const auto before = std::prev(day);
            perDay =
                (value.value - before->second.value.value) / static_cast<double>(day->first - before->first);
        }
        Excesses found;
        for (const GroupLimits& limits : m_site->groups.at(key.target)) {
            const Excesses excesses = excessesOf(reference, value.value, perDay, limits);
            found = {std::max(found.total, excesses.total), std::max(found.daily, excesses.daily)};
        }
        if (found.total > 0 || found.daily > 0) {
            texts.push_back(excessText(key, sample));
            Worst& ofName = worst[std::to_string(key.target) + ' ' + key.name];
            ofName = {key.target, std::max(ofName.total, found.total), std::max(ofName.daily, found.daily)};
        }
    }
}

} // namespace monitorservice::test
