#include "delivery/DeliveryIntake.h"

#include "alarm/Judgement.h"
#include "delivery/DeliveryRecord.h"
#include "delivery/PointMerge.h"
#include "json/JsonText.h"
#include "notify/NoteNews.h"

#include <deque>
#include <unordered_map>
#include <utility>
#include <vector>

namespace monitorservice {

namespace {

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
        : target(to), judgement(session, to.quantity, *to.days, author)
    {
    }

    const DeliveryTarget& target;
    DeliveryShare share;
    Judgement judgement;
    Judgement::Outcome outcome;
};

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
    tally.judgement.judge({merged.key, location.name, location.depth, location.initialValue,
                           merged.initialValueChanged, location.insertCount,
                           std::move(merged.changedReadings)});
}

std::string answerOf(std::vector<PointAnswer>& points)
{
    JsonArrayWriter answer;
    for (PointAnswer& point : points) {
        const auto& alarms = point.tally->outcome.alarmOfName;
        const auto alarm = alarms.find(point.name);
        point.json.text("alarmId", alarm == alarms.end() ? std::string() : alarm->second);
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
    for (const DeliveredPoint& point : delivery.points) {
        const DeliveryTarget& target = targets.of(delivery, point);
        TargetTally*& tally = tallyOf[&target];
        if (tally == nullptr) {
            tally = &tallies.emplace_back(session, target, author);
        }
        MergedPoint merged =
            mergePoint(session, target, delivery, point, author, tally->judgement.concerns(point.name));
        points.push_back({tally, point.name, answerOf(point, merged)});
        add(*tally, point, std::move(merged));
    }
    bool changed = false;
    for (TargetTally& tally : tallies) {
        if (tally.share.changed) {
            changed = true;
            recordDelivery(session, tally.target.quantity, tally.share, author);
            tally.outcome = tally.judgement.finish();
            for (const std::string& alarm : tally.outcome.changedAlarms) {
                noteNews(session, alarm);
            }
        }
    }
    return {answerOf(points), changed};
}

} // namespace monitorservice
