#include "alarm/Alarms.h"

#include "alarm/Thresholds.h"
#include "domain/PointLocation.h"
#include "json/JsonText.h"

#include <simdjson.h>

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

void addGroup(LimitsByName& limits, std::string_view document)
{
    try {
        simdjson::dom::parser parser;
        const simdjson::dom::element group = parser.parse(document.data(), document.size());
        const Limits ofGroup{static_cast<DayVariationKind>(group["dayVarType"].get_int64().value()),
                             group["dayVarValue"].get_double().value(),
                             group["totalVar"].get_double().value()};
        const simdjson::dom::array names = group["groupPoint"];
        for (const simdjson::dom::element name : names) {
            limits[std::string(name.get_string().value())].push_back(ofGroup);
        }
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored group is damaged: ") + error.what());
    }
}

LimitsByName limitsOf(const Session& session, const DeliveryTarget& target)
{
    const Where where = Where::equals("subCategoryId", target.subCategory);
    DocumentQuery query;
    query.project = target.project;
    query.parent = target.cell;
    query.where = &where;
    LimitsByName limits;
    session.documents(DocumentKind::Group).visit(query, [&limits](std::string_view document) {
        addGroup(limits, document);
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
std::vector<DepthReading> depthsOf(const Session& session, const DeliveryTarget& target,
                                   const std::string& name, std::int64_t day)
{
    const Measurements& measurements = session.measurements();
    std::vector<StoredPoint> points;
    measurements.visitPoints(target.cell, target.subCategory, name,
                             [&points](const StoredPoint& stored) { points.push_back(stored); });
    std::vector<DepthReading> depths;
    for (const StoredPoint& stored : points) {
        const std::optional<DaySummary> latest = measurements.latestDayBefore(stored.key, day + 1);
        if (latest) {
            const PointLocation point = pointLocationOf(stored.document);
            const PointReading reading{point.initialValue, latest->value, std::nullopt};
            depths.push_back({point.depth, variationOf(reading, {}).total, *latest});
        }
    }
    return depths;
}

void insertDepth(Session& session, const DeliveryTarget& target, const std::string& detail,
                 const std::string& name, const DepthReading& depth)
{
    const std::string id = session.newIdentifier();
    session.documents(DocumentKind::AlarmDepth)
        .insert(target.project, id,
                JsonObjectWriter()
                    .text("_id", id)
                    .text("detailId", detail)
                    .text("pointName", name)
                    .integer("monitorCount", depth.latest.count)
                    .text("monitorTime", isoText(depth.latest.time, depth.latest.offsetMinutes))
                    .number("totalValue", depth.total)
                    .text("depth", depth.depth)
                    .finish());
}

void insertDetail(Session& session, const DeliveryTarget& target, const std::string& alarm,
                  const std::string& name, const Excess& excess, const Author& author)
{
    const std::vector<DepthReading> depths = depthsOf(session, target, name, excess.day.day);
    const bool hasSeveralDepths = depths.size() > 1;
    const std::string id = session.newIdentifier();
    const Variation& variation = excess.variation;
    session.documents(DocumentKind::AlarmDetail)
        .insert(target.project, id,
                JsonObjectWriter()
                    .text("_id", id)
                    .text("alarmManId", alarm)
                    .text("pointName", name)
                    .text("totalVar", decimalText(variation.total))
                    .text("dayVar", variation.day ? decimalText(*variation.day) : std::string())
                    .number("totalBeyound", variation.totalBeyond)
                    .number("dayBeyound", variation.dayBeyond)
                    .boolean("isThreeVar", hasSeveralDepths)
                    .boolean("isInclinometer", hasSeveralDepths)
                    .integer("monitorCount", excess.day.count)
                    .text("monitorTime", isoText(excess.day.time, excess.day.offsetMinutes))
                    .text("depth", excess.depth)
                    .text("alarmTime", author.time)
                    .text("createdAt", author.time)
                    .text("createdBy", author.name)
                    .text("updatedAt", author.time)
                    .text("updatedBy", author.name)
                    .finish());
    if (hasSeveralDepths) {
        for (const DepthReading& depth : depths) {
            insertDepth(session, target, id, name, depth);
        }
    }
}

} // namespace

void raiseAlarm(Session& session, const DeliveryTarget& target, const std::vector<EvaluatedPoint>& points,
                const Author& author)
{
    const LimitsByName limits = limitsOf(session, target);
    const std::map<std::string, Excess> excesses = excessesOf(session, limits, points);
    if (excesses.empty()) {
        return;
    }
    const std::string id = session.newIdentifier();
    session.documents(DocumentKind::Alarm)
        .insert(target.project, id,
                JsonObjectWriter()
                    .text("_id", id)
                    .text("projectId", target.project)
                    .text("cellId", target.cell)
                    .text("cellName", target.cellName)
                    .text("subCategoryId", target.subCategory)
                    .text("alarmTime", author.time)
                    .integer("pointCounts", static_cast<std::int64_t>(excesses.size()))
                    .text("createdAt", author.time)
                    .text("createdBy", author.name)
                    .text("updatedAt", author.time)
                    .text("updatedBy", author.name)
                    .finish());
    for (const auto& [name, excess] : excesses) {
        insertDetail(session, target, id, name, excess, author);
    }
}

} // namespace monitorservice
