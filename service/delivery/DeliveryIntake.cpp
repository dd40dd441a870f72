#include "delivery/DeliveryIntake.h"

#include "alarm/Alarms.h"
#include "delivery/DeliveryRecord.h"
#include "delivery/PointMerge.h"
#include "json/JsonText.h"

#include <unordered_map>
#include <utility>
#include <vector>

namespace monitorservice {

namespace {

// What the sender cannot know of a point. Not its whole document: of that it may have been a small part, so
// that a small delivery would have a huge answer.
std::string answerOf(const PointLocation& point)
{
    return JsonObjectWriter()
        .text("_id", point.id)
        .text("cellId", point.cell)
        .text("subCategoryId", point.subCategory)
        .text("name", point.name)
        .text("depth", point.depth)
        .integer("insertCount", point.insertCount)
        .integer("lastCount", point.lastCount)
        .text("lastDate", point.lastDate)
        .finish();
}

// What a delivery has brought into one target so far.
struct TargetTally
{
    const DeliveryTarget* target = nullptr;
    DeliveryShare share;
    std::vector<EvaluatedPoint> evaluated;
};

void add(TargetTally& tally, const DeliveredPoint& point, const MergedPoint& merged)
{
    DeliveryShare& share = tally.share;
    share.rows += point.rows;
    share.inserted += merged.inserted;
    share.changed = share.changed || merged.changed;
    if (point.fileId) {
        share.fileId = *point.fileId;
    }
    if (merged.lastTime && (!share.lastTime || *merged.lastTime > *share.lastTime)) {
        share.lastTime = merged.lastTime;
        share.lastDate = merged.location.lastDate;
    }
    if (merged.newDays) {
        const PointLocation& location = merged.location;
        tally.evaluated.push_back(
            {merged.key, location.name, location.depth, location.initialValue.value_or(0), *merged.newDays});
    }
}

} // namespace

IntakeResult takeIn(Session& session, const Delivery& delivery, const MayDo& mayDo, const std::string& owner)
{
    const Author author{owner, isoText(session.now())};
    DeliveryTargets targets(session, mayDo);
    std::vector<TargetTally> tallies;
    std::unordered_map<const DeliveryTarget*, std::size_t> tallyOf;
    JsonArrayWriter points;
    for (const DeliveredPoint& point : delivery.points) {
        const DeliveryTarget& target = targets.of(delivery, point);
        const auto [tally, isNew] = tallyOf.try_emplace(&target, tallies.size());
        if (isNew) {
            tallies.push_back({&target, {}, {}});
        }
        const MergedPoint merged = mergePoint(session, target, delivery, point, author);
        points.json(answerOf(merged.location));
        add(tallies[tally->second], point, merged);
    }
    IntakeResult result{points.finish(), false};
    for (const TargetTally& tally : tallies) {
        if (tally.share.changed) {
            result.changed = true;
            recordDelivery(session, tally.target->quantity, tally.share, author);
            raiseAlarm(session, tally.target->quantity, tally.evaluated, author);
        }
    }
    return result;
}

} // namespace monitorservice
