#include "delivery/DeliveryTrail.h"

#include "domain/SampleText.h"
#include "trail/AuditTrail.h"

#include <string>
#include <utility>

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

std::string jsonOf(const Sample& sample)
{
    std::string json;
    appendSample(json, sample);
    return json;
}

} // namespace

void DeliveryTrail::initialValueChanged(const std::optional<double>& before,
                                        const std::optional<double>& after)
{
    record("initialValue.changed", jsonOf(before), jsonOf(after));
}

void DeliveryTrail::sampleCorrected(const Sample& before, const Sample& after)
{
    m_before.json(jsonOf(before));
    m_after.json(jsonOf(after));
    if (++m_samples == samplesInAnEntry) {
        finish();
    }
}

void DeliveryTrail::finish()
{
    if (m_samples > 0) {
        record("sample.corrected", std::exchange(m_before, {}).finish(), std::exchange(m_after, {}).finish());
        m_samples = 0;
    }
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
    monitorservice::record(m_session, std::move(change));
}

} // namespace monitorservice
