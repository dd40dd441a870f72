#include "delivery/PointChange.h"

#include "delivery/DeliveryTargets.h"
#include "delivery/DeliveryTrail.h"
#include "delivery/JudgementNews.h"
#include "domain/Assign.h"
#include "time/Timestamp.h"

namespace monitorservice {

namespace {

void judgeAnew(Session& session, const DeliveryTarget& target, std::int64_t key,
               const PointLocation& location, const Author& author)
{
    Judgement judgement(session, target.quantity, *target.days, author);
    ChangedPoint changed;
    changed.key = key;
    changed.name = location.name;
    changed.depth = location.depth;
    changed.initialValue = location.initialValue;
    changed.initialValueChanged = true;
    changed.samplesHeld = location.insertCount;
    judgement.judge(changed);
    finishAndTell(session, judgement);
}

} // namespace

PointLocation changePoint(Session& session, PointLocation location, const PointChange& change,
                          const std::string& owner)
{
    const PointLocation before = location;
    const bool isReferenceChanged = assign(location.initialValue, change.initialValue);
    bool isChanged = assign(location.alias, change.alias) || isReferenceChanged;
    isChanged = assign(location.dataType, change.dataType) || isChanged;
    isChanged = assign(location.offsetDirection, change.offsetDirection) || isChanged;
    if (!isChanged) {
        return location;
    }
    const Author author{owner, isoText(session.now())};
    location.stamp.change(author);
    const std::optional<StoredPoint> stored =
        session.measurements().findPoint(location.cell, location.subCategory, location.name, location.depth);
    if (!stored) {
        throw StoreError(StoreFailure::InputOutput, "a point is there and cannot be found");
    }
    const std::optional<Timestamp> lastDate = parseTimestamp(location.lastDate);
    session.measurements().replacePoint(stored->key, toDocument(location),
                                        lastDate ? std::optional(lastDate->milliseconds) : std::nullopt,
                                        std::nullopt);
    const DeliveryTarget target = targetOf(session, location.cell, location.subCategory);
    DeliveryTrail(session, target.quantity, location, author).described(before);
    if (isReferenceChanged) {
        judgeAnew(session, target, stored->key, location, author);
    }
    return location;
}

} // namespace monitorservice
