#include "delivery/DeliveryIntake.h"

#include "delivery/DeliveryRecord.h"
#include "delivery/JudgementNews.h"
#include "delivery/PointMerge.h"
#include "json/JsonText.h"

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <utility>
#include <vector>

namespace monitorservice {

namespace {

// Points, and days of them: what is read at once is held.
constexpr std::size_t mostAnnounced = 2000;

// What the sender cannot know of a point. Not its whole document: of that it may have been a small part, so
// that a small delivery would have a huge answer.
JsonObjectWriter answerOf(const DeliveredPoint& delivered, const MergedPoint& merged)
{
    const PointLocation& point = merged.location;
    const auto sent = static_cast<std::int64_t>(delivered.samples.size());
    JsonObjectWriter answer;
    answer.text("_id", point.id)
        .text("cellId", point.cell)
        .text("subCategoryId", point.subCategory)
        .text("name", point.name)
        .text("depth", point.depth)
        .integer("insertCount", point.insertCount)
        .integer("lastCount", point.lastCount)
        .text("lastDate", point.lastDate)
        .boolean("isNew", merged.isNew)
        .integer("inserted", merged.inserted)
        .integer("corrected", merged.corrected)
        .integer("unchanged", sent - merged.inserted - merged.corrected);
    return answer;
}

// What a delivery has brought into one target so far.
struct TargetTally
{
    TargetTally(Session& session, const DeliveryTarget& to, const Author& author)
        : target(to), record(session, to.quantity, author), judgement(session, to.quantity, *to.days, author)
    {
    }

    const DeliveryTarget& target;
    std::size_t announced = 0; // the store knows which of the points before this one go there
    DeliveryRecord record;
    DeliveryShare share;
    Judgement judgement;
    Judgement::Outcome outcome;
};

std::vector<DayPeriod> daysOf(const DeliveredPoint& point, LocalDays& calendar)
{
    std::vector<DayPeriod> days;
    for (const DeliveredSample& sample : point.samples) {
        if (days.empty() || sample.time >= days.back().before) {
            days.push_back(calendar.periodOf(sample.time));
        }
    }
    return days;
}

// Tells the store what the next points need that go where the first of them goes; gives the place of the
// first one it does not know of.
std::size_t announce(Session& session, const DeliveryTarget& target, const Delivery& delivery,
                     std::size_t first)
{
    std::vector<ExpectedPoint> expected;
    std::size_t days = 0;
    std::size_t next = first;
    for (; next < delivery.points.size() && next - first < mostAnnounced && days < mostAnnounced; ++next) {
        const DeliveredPoint& point = delivery.points[next];
        if (point.cell == target.quantity.cell && point.subCategory == target.quantity.subCategory) {
            expected.push_back({point.name, point.depth, daysOf(point, *target.days)});
            days += expected.back().days.size();
        }
    }
    session.measurements().expect(target.quantity.cell, target.quantity.subCategory, expected);
    return next;
}

// A point as it will be answered, but for its alarm.
struct PointAnswer
{
    const TargetTally* tally;
    std::string name;
    JsonObjectWriter json;
};

void add(TargetTally& tally, const DeliveredPoint& point, MergedPoint&& merged)
{
    DeliveryShare& share = tally.share;
    share.rows += point.rows;
    share.inserted += merged.inserted;
    share.corrected += merged.corrected;
    share.changed = share.changed || merged.changed;
    if (point.fileId) {
        share.fileId = *point.fileId;
    }
    if (merged.lastTime && (!share.lastTime || *merged.lastTime > *share.lastTime)) {
        share.lastTime = merged.lastTime;
        share.lastDate = merged.location.lastDate;
    }
    const PointLocation& location = merged.location;
    ChangedPoint changed;
    changed.key = merged.key;
    changed.name = location.name;
    changed.depth = location.depth;
    changed.initialValue = location.initialValue;
    changed.initialValueChanged = merged.initialValueChanged;
    changed.samplesHeld = location.insertCount;
    changed.readings = std::move(merged.changedReadings);
    changed.isAppended = merged.isAppended;
    tally.judgement.judge(changed);
}

std::string answerOf(std::vector<PointAnswer>& points)
{
    JsonArrayWriter answer;
    for (PointAnswer& point : points) {
        const auto& alarms = point.tally->outcome.alarmOfName;
        const auto alarm = alarms.find(point.name);
        point.json.text("alarmId", alarm == alarms.end() ? std::string() : alarm->second);
        const TargetTally& tally = *point.tally;
        point.json.text("deliveryId", tally.share.changed ? tally.record.mark().history : std::string());
        answer.json(point.json.finish());
    }
    return answer.finish();
}

} // namespace

IntakeResult takeIn(Session& session, const Delivery& delivery, const MayDo& mayDo, const std::string& owner)
{
    const Author author{owner, isoText(session.now())};
    DeliveryTargets targets(session, mayDo);
    std::deque<TargetTally> tallies;
    std::unordered_map<const DeliveryTarget*, TargetTally*> tallyOf;
    std::vector<PointAnswer> points;
    points.reserve(delivery.points.size());
    for (std::size_t i = 0; i < delivery.points.size(); ++i) {
        const DeliveredPoint& point = delivery.points[i];
        const DeliveryTarget& target = targets.of(delivery, point);
        TargetTally*& tally = tallyOf[&target];
        if (tally == nullptr) {
            DeliveryRecord::expect(session, target.quantity);
            Judgement::expect(session, target.quantity);
            const std::size_t announced = announce(session, target, delivery, i);
            tally = &tallies.emplace_back(session, target, author);
            tally->announced = announced;
        } else if (i >= tally->announced) {
            tally->announced = announce(session, target, delivery, i);
        }
        const Merging merging{target, delivery, tally->record.mark(), author};
        MergedPoint merged = mergePoint(session, merging, point, tally->judgement.concerns(point.name));
        points.push_back({tally, point.name, answerOf(point, merged)});
        add(*tally, point, std::move(merged));
    }
    bool changed = false;
    for (TargetTally& tally : tallies) {
        if (tally.share.changed) {
            changed = true;
            tally.record.write(tally.share);
            tally.outcome = finishAndTell(session, tally.judgement);
        }
    }
    return {answerOf(points), changed};
}

} // namespace monitorservice
