#include "delivery/PointChange.h"

#include "alarm/Judgement.h"
#include "delivery/DeliveryTargets.h"
#include "delivery/DeliveryTrail.h"
#include "domain/Assign.h"
#include "notify/NoteNews.h"
#include "time/Timestamp.h"

namespace monitorservice {

namespace {

void judgeAnew(Session& session, const DeliveryTarget& target, std::int64_t key,
               const PointLocation& location, const Author& author)
{
    Judgement judgement(session, target.quantity, *target.days, author);
    judgement.judge(
        {key, location.name, location.depth, location.initialValue, true, location.insertCount, {}});
    for (const std::string& alarm : judgement.finish().changedAlarms) {
        noteNews(session, alarm);
    }
}

} // namespace

PointLocation changePoint(Session& session, PointLocation location, const PointChange& change,
                          const std::string& owner)
{
    const std::optional<double> initialValue = location.initialValue;
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
                                        lastDate ? std::optional(lastDate->milliseconds) : std::nullopt);
    if (isReferenceChanged) {
        const DeliveryTarget target = targetOf(session, location);
        DeliveryTrail(session, target.quantity, location, author)
            .initialValueChanged(initialValue, location.initialValue);
        judgeAnew(session, target, stored->key, location, author);
    }
    return location;
}

} // namespace monitorservice
