#include "delivery/PointMerge.h"

#include "delivery/DeliveryRefusal.h"
#include "domain/Assign.h"
#include "time/Timestamp.h"

#include <tuple>

namespace monitorservice {

namespace {

enum class Outcome
{
    Held,
    Inserted,
    Corrected
};

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

// The time as text with another offset is the same time: such a sample is held already, and keeps its offset.
Outcome store(Measurements& measurements, std::int64_t point, Sample& sample)
{
    if (measurements.insertSample(point, sample)) {
        return Outcome::Inserted;
    }
    const std::optional<Sample> held = measurements.findSample(point, sample.time, sample.count);
    if (held && held->value == sample.value && held->timeFlag == sample.timeFlag) {
        return Outcome::Held;
    }
    sample.offsetMinutes = held ? held->offsetMinutes : sample.offsetMinutes;
    measurements.replaceSample(point, sample);
    return Outcome::Corrected;
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
    SampleMerge(Measurements& measurements, LocalDays& days, MergedPoint& merged)
        : m_measurements(measurements), m_days(days), m_merged(merged)
    {
        if (merged.location.insertCount > 0) {
            m_merged.lastTime = lastTimeOf(merged.location);
        }
    }

    // Samples come in the order of time and count.
    void add(Sample sample)
    {
        const Outcome outcome = store(m_measurements, m_merged.key, sample);
        if (outcome == Outcome::Held) {
            return;
        }
        m_merged.changed = true;
        const std::int64_t day = m_days.dayOf(sample.time);
        if (m_day && m_day->day != day) {
            finish();
        }
        const std::int64_t samples = m_day ? m_day->samples : 0;
        const std::int64_t more = outcome == Outcome::Inserted ? 1 : 0;
        m_day =
            DaySummary{day, sample.time, sample.count, sample.offsetMinutes, sample.value, samples + more};
        m_merged.inserted += more;
        noteLatest(sample, day);
    }

    void finish()
    {
        if (m_day) {
            m_measurements.addToDay(m_merged.key, *m_day);
            m_day.reset();
        }
    }

private:
    void noteLatest(const Sample& sample, std::int64_t day)
    {
        PointLocation& location = m_merged.location;
        if (m_merged.lastTime &&
            std::tie(sample.time, sample.count) < std::tie(*m_merged.lastTime, location.lastCount)) {
            return;
        }
        if (m_merged.newDays) {
            m_merged.newDays->last = day;
        } else {
            m_merged.newDays = DayRange{day, day};
        }
        m_merged.lastTime = sample.time;
        location.lastCount = sample.count;
        location.lastDate = isoText(sample.time, sample.offsetMinutes);
    }

    Measurements& m_measurements;
    LocalDays& m_days;
    MergedPoint& m_merged;
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

// Whether the description differs from what was stored.
bool describe(PointLocation& location, const DeliveredPoint& point)
{
    bool changed = assign(location.alias, point.alias);
    changed = assign(location.dataType, point.dataType) || changed;
    changed = assign(location.initialValue, point.initialValue) || changed;
    changed = assign(location.offsetDirection, point.offsetDirection) || changed;
    return assign(location.links, point.links) || changed;
}

} // namespace

MergedPoint mergePoint(Session& session, const DeliveryTarget& target, const Delivery& delivery,
                       const DeliveredPoint& point, const Author& author)
{
    Measurements& measurements = session.measurements();
    const std::optional<StoredPoint> stored =
        measurements.findPoint(target.quantity.cell, target.quantity.subCategory, point.name, point.depth);
    MergedPoint merged;
    merged.location =
        stored ? fromDocument<PointLocation>(stored->document) : newLocation(session, target, point, author);
    if (stored && !target.mayEdit && point.links && *point.links != merged.location.links) {
        throw DeliveryRefusal("\"" + delivery.nameOf(point.element) +
                                  ".links\": the token may not edit monitorings of category \"" +
                                  target.quantity.category + "\" in this project",
                              DeliveryRefusal::Reason::Forbidden);
    }
    merged.changed = describe(merged.location, point) || !stored;
    merged.key = stored ? stored->key
                        : measurements.insertPoint(target.quantity.project, merged.location.id,
                                                   toDocument(merged.location));
    SampleMerge samples(measurements, *target.days, merged);
    for (const DeliveredSample& sample : point.samples) {
        samples.add(sampleOf(delivery, sample));
    }
    samples.finish();
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
