#include "delivery/PointMerge.h"

#include "delivery/DeliveryRefusal.h"
#include "delivery/DeliveryTrail.h"
#include "domain/Assign.h"
#include "time/DayPeriod.h"
#include "time/Timestamp.h"

#include <tuple>

namespace monitorservice {

namespace {

[[noreturn]] void refuse(const DeliveryTarget& target, const std::string& place, const char* what)
{
    throw DeliveryRefusal("\"" + place + "\": the token may not edit monitorings of category \"" +
                              target.quantity.category + "\" in this project, and " + what,
                          DeliveryRefusal::Reason::Forbidden);
}

Sample sampleOf(const Delivery& delivery, const DeliveredSample& delivered)
{
    Sample sample;
    sample.time = delivered.time;
    sample.count = delivered.count;
    if (delivered.offsetMinutes != DeliveredSample::utc) {
        sample.offsetMinutes = delivered.offsetMinutes;
    }
    sample.value = delivered.value;
    sample.timeFlag = delivery.timeFlags[delivered.timeFlag];
    return sample;
}

Instant lastTimeOf(const PointLocation& location)
{
    const std::optional<Timestamp> time = parseTimestamp(location.lastDate);
    if (!time) {
        throw DamagedDocument("a stored point location is damaged: \"lastDate\" is no time");
    }
    return time->milliseconds;
}

// Merges the samples of one point.
class SampleMerge
{
public:
    SampleMerge(Session& session, const Merging& merging, MergedPoint& merged, DeliveryTrail& trail,
                bool withReadings)
        : m_measurements(session.measurements()), m_merging(merging), m_merged(merged), m_trail(trail),
          m_withReadings(withReadings)
    {
        if (merged.location.insertCount > 0) {
            m_merged.lastTime = lastTimeOf(merged.location);
        }
    }

    // Samples come in the order of time and count.
    void add(const DeliveredSample& delivered)
    {
        Sample sample = sampleOf(m_merging.delivery, delivered);
        const DayPeriod day = m_merging.target.days->periodOf(sample.time);
        const bool isNew = m_measurements.insertSample(m_merged.key, day, sample, m_merging.mark.number);
        if (!isNew && !correct(day, sample, delivered)) {
            return;
        }
        m_merged.changed = true;
        (isNew ? m_merged.inserted : m_merged.corrected) += 1;
        noteLatest(sample);
        if (m_withReadings) {
            m_merged.changedReadings.push_back(
                {sample.time, sample.count, sample.offsetMinutes, sample.value});
        }
    }

private:
    // The time as text with another offset is the same time: such a sample is held already, and keeps its
    // offset. Gives whether anything was corrected.
    bool correct(const DayPeriod& day, Sample& sample, const DeliveredSample& delivered)
    {
        const std::optional<Sample> held = m_measurements.findSample(m_merged.key, sample.time, sample.count);
        if (!held) {
            throw StoreError(StoreFailure::InputOutput, "a sample is there and cannot be found");
        }
        if (held->value == sample.value && held->timeFlag == sample.timeFlag) {
            return false;
        }
        if (!m_merging.target.mayEdit) {
            refuse(m_merging.target, m_merging.delivery.nameOfRow(delivered.row),
                   "this corrects a sample that is held");
        }
        m_merged.isAppended = false;
        sample.offsetMinutes = held->offsetMinutes;
        m_measurements.replaceSample(m_merged.key, day, sample);
        m_trail.sampleCorrected(*held, sample);
        return true;
    }

    void noteLatest(const Sample& sample)
    {
        PointLocation& location = m_merged.location;
        if (m_merged.lastTime &&
            std::tie(sample.time, sample.count) < std::tie(*m_merged.lastTime, location.lastCount)) {
            m_merged.isAppended = false;
            return;
        }
        m_merged.lastTime = sample.time;
        location.lastCount = sample.count;
        location.lastDate = isoText(sample.time, sample.offsetMinutes);
    }

    Measurements& m_measurements;
    const Merging& m_merging;
    MergedPoint& m_merged;
    DeliveryTrail& m_trail;
    bool m_withReadings;
};

PointLocation newLocation(Session& session, const DeliveryTarget& target, const DeliveredPoint& point,
                          const Author& author)
{
    PointLocation location;
    location.id = session.newIdentifier();
    location.project = target.quantity.project;
    location.cell = target.quantity.cell;
    location.subCategory = target.quantity.subCategory;
    location.name = point.name;
    location.depth = point.depth;
    location.stamp = Stamp::of(author);
    return location;
}

// What only who may edit may change of a point that is there. An initial value before the first sample adds.
void refuseChanges(const DeliveryTarget& target, const Delivery& delivery, const DeliveredPoint& point,
                   const PointLocation& location)
{
    const std::string place = delivery.nameOf(point.element);
    if (point.links && *point.links != location.links) {
        refuse(target, place + ".links", "the point has other links");
    }
    const bool isMeasured = location.initialValue || location.insertCount > 0;
    if (isMeasured && point.initialValue && point.initialValue != location.initialValue) {
        refuse(target, place + ".initialValue", "the point is measured from another value");
    }
}

template <typename Member, typename Delivered>
bool isOther(const Member& member, const std::optional<Delivered>& delivered)
{
    return delivered && member != *delivered;
}

// Takes over the description. Gives whether it differs from what was stored.
bool describe(MergedPoint& merged, const DeliveredPoint& point, DeliveryTrail& trail)
{
    PointLocation& location = merged.location;
    merged.initialValueChanged = isOther(location.initialValue, point.initialValue);
    if (!merged.initialValueChanged && !isOther(location.alias, point.alias) &&
        !isOther(location.dataType, point.dataType) &&
        !isOther(location.offsetDirection, point.offsetDirection) && !isOther(location.links, point.links)) {
        return false;
    }
    const PointLocation before = location;
    assign(location.initialValue, point.initialValue);
    assign(location.alias, point.alias);
    assign(location.dataType, point.dataType);
    assign(location.offsetDirection, point.offsetDirection);
    assign(location.links, point.links);
    if (!merged.isNew) {
        trail.described(before);
    }
    return true;
}

} // namespace

MergedPoint mergePoint(Session& session, const Merging& merging, const DeliveredPoint& point,
                       bool withReadings)
{
    Measurements& measurements = session.measurements();
    const DeliveryTarget& target = merging.target;
    const std::optional<StoredPoint> stored =
        measurements.findPoint(target.quantity.cell, target.quantity.subCategory, point.name, point.depth);
    MergedPoint merged;
    merged.location = stored ? fromDocument<PointLocation>(stored->document)
                             : newLocation(session, target, point, merging.author);
    merged.isNew = !stored;
    if (stored && !target.mayEdit) {
        refuseChanges(target, merging.delivery, point, merged.location);
    }
    DeliveryTrail trail(session, target.quantity, merged.location, merging.author, merging.mark.history);
    const bool isDescribed = describe(merged, point, trail);
    merged.changed = isDescribed || merged.isNew;
    merged.key = stored ? stored->key
                        : measurements.insertPoint(target.quantity.project, merged.location.id,
                                                   toDocument(merged.location), merging.mark.number);
    SampleMerge samples(session, merging, merged, trail, withReadings);
    for (const DeliveredSample& sample : point.samples) {
        samples.add(sample);
    }
    trail.finish();
    if (merged.changed) {
        // The file alone is no change: an earlier delivery that is repeated does not put its file back.
        assign(merged.location.fileId, point.fileId);
        merged.location.insertCount += merged.inserted;
        merged.location.stamp.change(merging.author);
        measurements.replacePoint(merged.key, toDocument(merged.location), merged.lastTime,
                                  merging.mark.number);
    }
    return merged;
}

} // namespace monitorservice
