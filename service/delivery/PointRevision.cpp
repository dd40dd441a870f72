#include "delivery/PointRevision.h"

namespace monitorservice {

PointRevision::PointRevision(Session& session, const DeliveryTarget& target, const StoredPoint& stored,
                             const Author& author)
    : m_session(session), m_target(target), m_author(author), m_key(stored.key),
      m_before(fromDocument<PointLocation>(stored.document)), m_location(m_before),
      m_trail(session, target.quantity, m_location, author)
{
}

void PointRevision::remove(const Sample& sample)
{
    m_session.measurements().removeSample(m_key, m_target.days->periodOf(sample.time), sample.time,
                                          sample.count);
    m_trail.sampleRemoved(sample);
    m_removed.emplace(sample.time, sample.count);
}

void PointRevision::restore(const Sample& sample)
{
    Measurements& measurements = m_session.measurements();
    const std::optional<Sample> held = measurements.findSample(m_key, sample.time, sample.count);
    if (!held || (held->value == sample.value && held->timeFlag == sample.timeFlag)) {
        return;
    }
    measurements.replaceSample(m_key, m_target.days->periodOf(sample.time), sample);
    m_trail.sampleCorrected(*held, sample);
    m_restored[{sample.time, sample.count}] = {sample.time, sample.count, held->offsetMinutes, sample.value};
}

ChangedPoint PointRevision::finish(const std::optional<std::int64_t>& delivery)
{
    const bool isDescribed =
        m_location.initialValue != m_before.initialValue || toDocument(m_location) != toDocument(m_before);
    ChangedPoint changed;
    changed.key = m_key;
    changed.name = m_location.name;
    changed.depth = m_location.depth;
    changed.initialValue = m_location.initialValue;
    changed.initialValueChanged = m_location.initialValue != m_before.initialValue;
    changed.removed.assign(m_removed.begin(), m_removed.end());
    for (const auto& [key, reading] : m_restored) {
        changed.readings.push_back(reading);
    }
    if (isDescribed || !m_removed.empty() || !m_restored.empty()) {
        m_location.insertCount -= removed();
        const std::optional<Instant> lastTime = noteLatest();
        m_location.stamp.change(m_author);
        m_session.measurements().replacePoint(m_key, toDocument(m_location), lastTime, delivery);
        m_trail.described(m_before);
        m_trail.finish();
    }
    changed.samplesHeld = m_location.insertCount;
    return changed;
}

std::optional<Instant> PointRevision::noteLatest()
{
    const std::optional<Sample> latest = m_session.measurements().latestSample(m_key);
    m_location.lastCount = latest ? latest->count : 0;
    m_location.lastDate = latest ? isoText(latest->time, latest->offsetMinutes) : std::string();
    return latest ? std::optional(latest->time) : std::nullopt;
}

} // namespace monitorservice
