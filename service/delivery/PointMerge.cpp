#include "delivery/PointMerge.h"

#include "delivery/DeliveryRefusal.h"
#include "delivery/DeliveryTrail.h"
#include "domain/Assign.h"
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
    SampleMerge(Session& session, const DeliveryTarget& target, const Delivery& delivery, MergedPoint& merged,
                DeliveryTrail& trail, bool withReadings)
        : m_measurements(session.measurements()), m_target(target), m_delivery(delivery), m_merged(merged),
          m_trail(trail), m_withReadings(withReadings)
    {
        if (merged.location.insertCount > 0) {
            m_merged.lastTime = lastTimeOf(merged.location);
        }
    }

    // Samples come in the order of time and count.
    void add(const DeliveredSample& delivered)
    {
        Sample sample = sampleOf(m_delivery, delivered);
        const bool isNew = m_measurements.insertSample(m_merged.key, sample);
        if (!isNew && !correct(sample, delivered)) {
            return;
        }
        m_merged.changed = true;
        (isNew ? m_merged.inserted : m_merged.corrected) += 1;
        const std::int64_t day = m_target.days->dayOf(sample.time);
        if (m_day && m_day->day != day) {
            finish();
        }
        const std::int64_t samples = (m_day ? m_day->samples : 0) + (isNew ? 1 : 0);
        m_day = DaySummary{day, sample.time, sample.count, sample.offsetMinutes, sample.value, samples};
        noteLatest(sample);
        if (m_withReadings) {
            m_merged.changedReadings.push_back(
                {sample.time, sample.count, sample.offsetMinutes, sample.value});
        }
    }

    void finish()
    {
        if (m_day) {
            m_measurements.addToDay(m_merged.key, *m_day);
            m_day.reset();
        }
    }

private:
    // The time as text with another offset is the same time: such a sample is held already, and keeps its
    // offset. Gives whether anything was corrected.
    bool correct(Sample& sample, const DeliveredSample& delivered)
    {
        const std::optional<Sample> held = m_measurements.findSample(m_merged.key, sample.time, sample.count);
        if (!held) {
            throw StoreError(StoreFailure::InputOutput, "a sample is there and cannot be found");
        }
        if (held->value == sample.value && held->timeFlag == sample.timeFlag) {
            return false;
        }
        if (!m_target.mayEdit) {
            refuse(m_target, m_delivery.nameOfRow(delivered.row), "this corrects a sample that is held");
        }
        sample.offsetMinutes = held->offsetMinutes;
        m_measurements.replaceSample(m_merged.key, sample);
        m_trail.sampleCorrected(*held, sample);
        return true;
    }

    void noteLatest(const Sample& sample)
    {
        PointLocation& location = m_merged.location;
        if (m_merged.lastTime &&
            std::tie(sample.time, sample.count) < std::tie(*m_merged.lastTime, location.lastCount)) {
            return;
        }
        m_merged.lastTime = sample.time;
        location.lastCount = sample.count;
        location.lastDate = isoText(sample.time, sample.offsetMinutes);
    }

    Measurements& m_measurements;
    const DeliveryTarget& m_target;
    const Delivery& m_delivery;
    MergedPoint& m_merged;
    DeliveryTrail& m_trail;
    bool m_withReadings;
    std::optional<DaySummary> m_day;
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

// Whether the description differs from what was stored.
bool describe(PointLocation& location, const DeliveredPoint& point)
{
    bool changed = assign(location.alias, point.alias);
    changed = assign(location.dataType, point.dataType) || changed;
    changed = assign(location.offsetDirection, point.offsetDirection) || changed;
    return assign(location.links, point.links) || changed;
}

} // namespace

MergedPoint mergePoint(Session& session, const DeliveryTarget& target, const Delivery& delivery,
                       const DeliveredPoint& point, const Author& author, bool withReadings)
{
    Measurements& measurements = session.measurements();
    const std::optional<StoredPoint> stored =
        measurements.findPoint(target.quantity.cell, target.quantity.subCategory, point.name, point.depth);
    MergedPoint merged;
    merged.location =
        stored ? fromDocument<PointLocation>(stored->document) : newLocation(session, target, point, author);
    merged.isNew = !stored;
    if (stored && !target.mayEdit) {
        refuseChanges(target, delivery, point, merged.location);
    }
    const std::optional<double> initialValue = merged.location.initialValue;
    merged.initialValueChanged = assign(merged.location.initialValue, point.initialValue);
    merged.changed = describe(merged.location, point) || merged.initialValueChanged || merged.isNew;
    merged.key = stored ? stored->key
                        : measurements.insertPoint(target.quantity.project, merged.location.id,
                                                   toDocument(merged.location));
    DeliveryTrail trail(session, target.quantity, merged.location, author);
    if (merged.initialValueChanged && stored) {
        trail.initialValueChanged(initialValue, merged.location.initialValue);
    }
    SampleMerge samples(session, target, delivery, merged, trail, withReadings);
    for (const DeliveredSample& sample : point.samples) {
        samples.add(sample);
    }
    samples.finish();
    trail.finish();
    if (merged.changed) {
        // The file alone is no change: an earlier delivery that is repeated does not put its file back.
        assign(merged.location.fileId, point.fileId);
        merged.location.insertCount += merged.inserted;
        merged.location.stamp.change(author);
        measurements.replacePoint(merged.key, toDocument(merged.location), merged.lastTime);
    }
    return merged;
}

} // namespace monitorservice
