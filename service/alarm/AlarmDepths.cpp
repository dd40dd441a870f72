#include "alarm/AlarmDepths.h"

#include "alarm/DecimalText.h"
#include "time/Timestamp.h"

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

std::optional<Reading> readingAt(const Measurements& measurements, std::int64_t point, Instant time,
                                 std::int32_t count, std::int64_t day)
{
    if (const auto sample = measurements.findSample(point, time, count)) {
        return Reading{sample->time, sample->count, sample->offsetMinutes, sample->value};
    }
    if (const auto last = measurements.latestDayBefore(point, day + 1)) {
        return Reading{last->time, last->count, last->offsetMinutes, last->value};
    }
    return std::nullopt;
}

std::vector<AlarmDepth> heldDepths(const Session& session, const std::string& project,
                                   const std::string& detail)
{
    DocumentQuery query;
    query.project = project;
    query.parent = detail;
    std::vector<AlarmDepth> held;
    session.documents(DocumentKind::AlarmDepth).visit(query, [&held](std::string_view document) {
        held.push_back(fromDocument<AlarmDepth>(document));
    });
    return held;
}

} // namespace

std::vector<AlarmDepth> depthsOf(const Session& session, LocalDays& days, const AlarmDetail& detail,
                                 const std::vector<std::shared_ptr<const JudgedPoint>>& points)
{
    const std::optional<Timestamp> time = parseTimestamp(detail.time);
    if (!time) {
        throw DamagedDocument("a stored alarm detail is damaged: \"monitorTime\" is no time");
    }
    const std::int64_t day = days.dayOf(time->milliseconds);
    std::vector<AlarmDepth> depths;
    for (const auto& point : points) {
        const std::optional<Reading> reading =
            readingAt(session.measurements(), point->key, time->milliseconds,
                      static_cast<std::int32_t>(detail.count), day);
        if (!reading) {
            continue;
        }
        AlarmDepth depth;
        depth.detail = detail.id;
        depth.point = detail.point;
        depth.count = reading->count;
        depth.time = isoText(reading->time, reading->offsetMinutes);
        depth.total = rounded(variationOf({point->reference, reading->value, std::nullopt}, {}).total);
        depth.depth = point->depth;
        depths.push_back(std::move(depth));
    }
    return depths;
}

bool replaceDepths(Session& session, const std::string& project, const std::string& detail,
                   std::vector<AlarmDepth> depths)
{
    Documents& documents = session.documents(DocumentKind::AlarmDepth);
    std::vector<AlarmDepth> held = heldDepths(session, project, detail);
    bool changed = false;
    for (AlarmDepth& depth : depths) {
        const auto same = std::find_if(held.begin(), held.end(),
                                       [&depth](const AlarmDepth& one) { return one.depth == depth.depth; });
        depth.detail = detail;
        if (same == held.end()) {
            depth.id = session.newIdentifier();
            documents.insert(project, depth.id, toDocument(depth));
            changed = true;
            continue;
        }
        depth.id = same->id;
        if (const std::string document = toDocument(depth); document != toDocument(*same)) {
            documents.replace(project, depth.id, document);
            changed = true;
        }
        held.erase(same);
    }
    for (const AlarmDepth& gone : held) {
        documents.remove(project, gone.id);
        changed = true;
    }
    return changed;
}

} // namespace monitorservice
