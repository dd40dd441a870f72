#pragma once

#include "delivery/DeliveryTargets.h"
#include "domain/PointLocation.h"
#include "domain/Sample.h"
#include "domain/Stamp.h"
#include "json/JsonText.h"
#include "store/Session.h"

#include <cstddef>
#include <optional>

namespace monitorservice {

/// Notes in the audit trail what a delivery has changed of a point that was there before.
class DeliveryTrail
{
public:
    /// All of it must outlive the trail.
    DeliveryTrail(Session& session, const MonitoredQuantity& quantity, const PointLocation& point,
                  const Author& author)
        : m_session(session), m_quantity(quantity), m_point(point), m_author(author)
    {
    }

    void initialValueChanged(const std::optional<double>& before, const std::optional<double>& after);

    /// Samples are noted many to an entry.
    void sampleCorrected(const Sample& before, const Sample& after);

    /// Notes the samples that have not been yet.
    void finish();

private:
    void record(const char* action, std::string before, std::string after);

    Session& m_session;
    const MonitoredQuantity& m_quantity;
    const PointLocation& m_point;
    const Author& m_author;
    JsonArrayWriter m_before;
    JsonArrayWriter m_after;
    std::size_t m_samples = 0;
};

} // namespace monitorservice
