#include "delivery/DeliveryTrail.h"

#include "domain/SampleText.h"
#include "trail/AuditTrail.h"

#include <optional>

namespace monitorservice {

namespace {

constexpr std::size_t samplesInAnEntry = 1000;

std::string jsonOf(const std::optional<double>& initialValue)
{
    std::string json;
    if (!initialValue) {
        return "null";
    }
    appendJsonNumber(json, *initialValue);
    return json;
}

std::string linksOf(const PointLocation& point)
{
    return JsonObjectWriter().json("links", point.links).finish();
}

std::string descriptionOf(const PointLocation& point)
{
    return JsonObjectWriter()
        .text("alias", point.alias)
        .integer("dataType", point.dataType)
        .text("offsetDirection", point.offsetDirection)
        .finish();
}

std::string jsonOf(const Sample& sample)
{
    std::string json;
    appendSample(json, sample);
    return json;
}

} // namespace

// Each with its own kind of entry, by which they are found.
void DeliveryTrail::described(const PointLocation& before)
{
    if (before.initialValue != m_point.initialValue) {
        record(trailaction::initialValueChanged, jsonOf(before.initialValue), jsonOf(m_point.initialValue));
    }
    if (before.links != m_point.links) {
        record(trailaction::linksReplaced, linksOf(before), linksOf(m_point));
    }
    if (before.alias != m_point.alias || before.dataType != m_point.dataType ||
        before.offsetDirection != m_point.offsetDirection) {
        record(trailaction::pointChanged, descriptionOf(before), descriptionOf(m_point));
    }
}

void DeliveryTrail::sampleCorrected(const Sample& before, const Sample& after)
{
    m_corrected.before.json(jsonOf(before));
    m_corrected.after.json(jsonOf(after));
    if (++m_corrected.count == samplesInAnEntry) {
        recordCorrected();
    }
}

void DeliveryTrail::sampleRemoved(const Sample& before)
{
    m_removed.before.json(jsonOf(before));
    if (++m_removed.count == samplesInAnEntry) {
        recordRemoved();
    }
}

void DeliveryTrail::pointRemoved()
{
    finish();
    record("pointLocation.deleted", toDocument(m_point), "null");
}

void DeliveryTrail::finish()
{
    if (m_corrected.count > 0) {
        recordCorrected();
    }
    if (m_removed.count > 0) {
        recordRemoved();
    }
}

void DeliveryTrail::recordCorrected()
{
    Samples samples = std::exchange(m_corrected, {});
    record(trailaction::sampleCorrected, samples.before.finish(), samples.after.finish());
}

void DeliveryTrail::recordRemoved()
{
    record("sample.deleted", std::exchange(m_removed, {}).before.finish(), "null");
}

void DeliveryTrail::record(const char* action, std::string before, std::string after)
{
    Change change;
    change.project = m_quantity.project;
    change.category = m_quantity.category;
    change.cell = m_quantity.cell;
    change.subCategory = m_quantity.subCategory;
    change.action = action;
    change.subject = m_point.id;
    change.name = m_point.depth.empty() ? m_point.name : m_point.name + " @ " + m_point.depth;
    change.before = std::move(before);
    change.after = std::move(after);
    change.author = m_author;
    change.delivery = m_history;
    monitorservice::record(m_session, std::move(change));
}

} // namespace monitorservice
