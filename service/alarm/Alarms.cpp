#include "alarm/Alarms.h"

#include "alarm/Thresholds.h"
#include "domain/Alarm.h"
#include "domain/AlarmDepth.h"
#include "domain/AlarmDetail.h"
#include "domain/Group.h"
#include "domain/PointLocation.h"
#include "json/JsonText.h"

#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <optional>

namespace monitorservice {

namespace {

// The limits for a name, one for each group that lists it.
using LimitsByName = std::map<std::string, std::vector<Limits>, std::less<>>;

// The worst that was found of a point name.
struct Excess
{
    Variation variation;
    std::string depth;
    DaySummary day;
};

// Digits without an exponent, as many as read back as the same number.
std::string decimalText(double value)
{
    constexpr std::size_t longest =
        std::numeric_limits<double>::max_exponent10 + 32 - std::numeric_limits<double>::min_exponent10;
    std::array<char, longest> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    return {text.data(), end};
}

void addGroup(LimitsByName& limits, const Group& group)
{
    const Limits ofGroup{static_cast<DayVariationKind>(group.dayVariationType), group.dayVariation,
                         group.totalVariation};
    for (const std::string& name : group.points) {
        limits[name].push_back(ofGroup);
    }
}

LimitsByName limitsOf(const Session& session, const MonitoredQuantity& quantity)
{
    const Where where = Where::equals("subCategoryId", quantity.subCategory);
    DocumentQuery query;
    query.project = quantity.project;
    query.parent = quantity.cell;
    query.where = &where;
    LimitsByName limits;
    session.documents(DocumentKind::Group).visit(query, [&limits](std::string_view document) {
        addGroup(limits, fromDocument<Group>(document));
    });
    return limits;
}

PointReading readingOf(const EvaluatedPoint& point, const DaySummary& day,
                       const std::optional<DaySummary>& before)
{
    PointReading reading{point.initialValue, day.value, std::nullopt};
    if (before) {
        reading.previous = {before->value, day.day - before->day};
    }
    return reading;
}

// The worst of the point's new days, by any of the limits; nothing when no day is over one.
std::optional<Excess> worstDay(const Measurements& measurements, const EvaluatedPoint& point,
                               const std::vector<Limits>& limits)
{
    std::optional<Excess> worst;
    std::optional<DaySummary> before = measurements.latestDayBefore(point.key, point.newDays.first);
    measurements.visitDays(point.key, point.newDays.first, point.newDays.last, [&](const DaySummary& day) {
        for (const Limits& one : limits) {
            const Variation variation = variationOf(readingOf(point, day, before), one);
            if (variation.isOver() && (!worst || variation.severity > worst->variation.severity)) {
                worst = Excess{variation, point.depth, day};
            }
        }
        before = day;
    });
    return worst;
}

std::map<std::string, Excess> excessesOf(const Session& session, const LimitsByName& limits,
                                         const std::vector<EvaluatedPoint>& points)
{
    std::map<std::string, Excess> excesses;
    for (const EvaluatedPoint& point : points) {
        const auto ofName = limits.find(point.name);
        if (ofName == limits.end()) {
            continue;
        }
        const std::optional<Excess> excess = worstDay(session.measurements(), point, ofName->second);
        if (!excess) {
            continue;
        }
        const auto [worst, isFirst] = excesses.try_emplace(point.name, *excess);
        if (!isFirst && excess->variation.severity > worst->second.variation.severity) {
            worst->second = *excess;
        }
    }
    return excesses;
}

// A point name as it is measured at one depth.
struct DepthReading
{
    std::string depth;
    double total = 0;
    DaySummary latest;
};

// Each depth as it was last measured by that day.
std::vector<DepthReading> depthsOf(const Session& session, const MonitoredQuantity& quantity,
                                   const std::string& name, std::int64_t day)
{
    const Measurements& measurements = session.measurements();
    std::vector<StoredPoint> points;
    measurements.visitPoints(quantity.cell, quantity.subCategory, name,
                             [&points](const StoredPoint& stored) { points.push_back(stored); });
    std::vector<DepthReading> depths;
    for (const StoredPoint& stored : points) {
        const std::optional<DaySummary> latest = measurements.latestDayBefore(stored.key, day + 1);
        if (latest) {
            const PointLocation point = fromDocument<PointLocation>(stored.document);
            const PointReading reading{point.initialValue.value_or(0), latest->value, std::nullopt};
            depths.push_back({point.depth, variationOf(reading, {}).total, *latest});
        }
    }
    return depths;
}

void insertDepth(Session& session, const MonitoredQuantity& quantity, const AlarmDetail& detail,
                 const DepthReading& reading)
{
    AlarmDepth depth;
    depth.id = session.newIdentifier();
    depth.detail = detail.id;
    depth.point = detail.point;
    depth.count = reading.latest.count;
    depth.time = isoText(reading.latest.time, reading.latest.offsetMinutes);
    depth.total = reading.total;
    depth.depth = reading.depth;
    session.documents(DocumentKind::AlarmDepth).insert(quantity.project, depth.id, toDocument(depth));
}

void insertDetail(Session& session, const MonitoredQuantity& quantity, const std::string& alarm,
                  const std::string& point, const Excess& excess, const Author& author)
{
    const std::vector<DepthReading> depths = depthsOf(session, quantity, point, excess.day.day);
    const Variation& variation = excess.variation;
    AlarmDetail detail;
    detail.id = session.newIdentifier();
    detail.alarm = alarm;
    detail.point = point;
    detail.total = decimalText(variation.total);
    detail.daily = variation.day ? decimalText(*variation.day) : std::string();
    detail.totalExcess = variation.totalBeyond;
    detail.dailyExcess = variation.dayBeyond;
    detail.hasDepths = depths.size() > 1;
    detail.isInclinometer = detail.hasDepths;
    detail.count = excess.day.count;
    detail.time = isoText(excess.day.time, excess.day.offsetMinutes);
    detail.depth = excess.depth;
    detail.raisedAt = author.time;
    detail.stamp = Stamp::of(author);
    session.documents(DocumentKind::AlarmDetail).insert(quantity.project, detail.id, toDocument(detail));
    if (detail.hasDepths) {
        for (const DepthReading& depth : depths) {
            insertDepth(session, quantity, detail, depth);
        }
    }
}

} // namespace

void raiseAlarm(Session& session, const MonitoredQuantity& quantity,
                const std::vector<EvaluatedPoint>& points, const Author& author)
{
    const LimitsByName limits = limitsOf(session, quantity);
    const std::map<std::string, Excess> excesses = excessesOf(session, limits, points);
    if (excesses.empty()) {
        return;
    }
    Alarm alarm;
    alarm.id = session.newIdentifier();
    alarm.project = quantity.project;
    alarm.cell = quantity.cell;
    alarm.cellName = quantity.cellName;
    alarm.subCategory = quantity.subCategory;
    alarm.raisedAt = author.time;
    alarm.pointCount = static_cast<std::int64_t>(excesses.size());
    alarm.stamp = Stamp::of(author);
    session.documents(DocumentKind::Alarm).insert(quantity.project, alarm.id, toDocument(alarm));
    for (const auto& [name, excess] : excesses) {
        insertDetail(session, quantity, alarm.id, name, excess, author);
    }
}

} // namespace monitorservice
