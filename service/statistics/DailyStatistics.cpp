#include "statistics/DailyStatistics.h"

#include "json/JsonText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <tuple>

namespace monitorservice {

namespace {

double depthOf(const std::string& text)
{
    double depth = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, depth);
    const bool isNumber = error == std::errc() && rest == end && depth == depth;
    return isNumber ? depth : std::numeric_limits<double>::infinity();
}

void appendMember(std::string& out, const char* name, std::string_view text)
{
    out += out.size() > 1 ? "," : "";
    appendJsonString(out, name);
    out += ':';
    appendJsonString(out, text);
}

} // namespace

void DailyStatistics::beginPoint(const FoundPoint& point)
{
    std::string begin = "{";
    appendMember(begin, "_id", point.id);
    appendMember(begin, "name", point.name);
    appendMember(begin, "depth", point.depth);
    begin += ",\"count\":";
    m_points.push_back({std::string(point.id), std::string(point.name), std::string(point.depth),
                        std::move(begin), "\",\"entity\":" + std::string(point.links) + "}"});
}

void DailyStatistics::add(const DayValue& value)
{
    m_values.push_back({m_points.size() - 1, value});
}

std::string DailyStatistics::text(LocalDays& days)
{
    const std::vector<std::size_t> rank = ranks();
    std::sort(m_values.begin(), m_values.end(), [&rank](const Value& left, const Value& right) {
        return std::tie(left.day.day, rank[left.point]) < std::tie(right.day.day, rank[right.point]);
    });
    std::string out = "[";
    const Value* previous = nullptr;
    for (const Value& value : m_values) {
        if (previous == nullptr || previous->day.day != value.day.day) {
            const Instant begin = days.beginOf(value.day.day);
            out += previous == nullptr ? "" : "]},";
            out += "{\"time\":\"";
            appendIsoText(out, begin, days.offsetMinutesAt(begin));
            out += "\",\"data\":[";
        } else {
            out += ',';
        }
        appendValue(out, value);
        previous = &value;
    }
    out += previous == nullptr ? "]" : "]}]";
    return out;
}

bool DailyStatistics::isBefore(const Point& left, const Point& right)
{
    return std::make_tuple(std::string_view(left.name), depthOf(left.depth), std::string_view(left.depth),
                           std::string_view(left.id)) <
           std::make_tuple(std::string_view(right.name), depthOf(right.depth), std::string_view(right.depth),
                           std::string_view(right.id));
}

// For each point its place within a day.
std::vector<std::size_t> DailyStatistics::ranks() const
{
    std::vector<std::size_t> order(m_points.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return isBefore(m_points[left], m_points[right]);
    });
    std::vector<std::size_t> ranks(m_points.size());
    for (std::size_t rank = 0; rank < order.size(); ++rank) {
        ranks[order[rank]] = rank;
    }
    return ranks;
}

void DailyStatistics::appendValue(std::string& out, const Value& value) const
{
    const Point& point = m_points[value.point];
    out += point.begin;
    appendJsonInteger(out, value.day.count);
    out += ",\"value\":";
    appendJsonNumber(out, value.day.value);
    out += ",\"time\":\"";
    appendIsoText(out, value.day.time, value.day.offsetMinutes);
    out += point.end;
}

} // namespace monitorservice
