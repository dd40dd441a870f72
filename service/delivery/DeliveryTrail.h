#pragma once

#include "delivery/DeliveryTargets.h"
#include "domain/PointLocation.h"
#include "domain/Sample.h"
#include "domain/Stamp.h"
#include "json/JsonText.h"
#include "store/Session.h"

#include <cstddef>
#include <string>
#include <utility>

namespace monitorservice {

/// What the entries say has happened: those that taking a delivery back reads again.
namespace trailaction {
constexpr const char* initialValueChanged = "initialValue.changed"; ///< a number or null
constexpr const char* linksReplaced = "links.replaced";             ///< "links"
constexpr const char* pointChanged = "pointLocation.changed"; ///< "alias", "dataType", "offsetDirection"
constexpr const char* sampleCorrected = "sample.corrected";   ///< an array of samples
} // namespace trailaction

/// Notes in the audit trail what is changed of a point that was there before.
class DeliveryTrail
{
public:
    /// `history` is the entry of the delivery; empty: no delivery changes the point. All of it must outlive
    /// the trail.
    DeliveryTrail(Session& session, const MonitoredQuantity& quantity, const PointLocation& point,
                  const Author& author, std::string history = {})
        : m_session(session), m_quantity(quantity), m_point(point), m_author(author),
          m_history(std::move(history))
    {
    }

    /// Notes what of the point's description is another now.
    void described(const PointLocation& before);

    /// Samples are noted many to an entry.
    void sampleCorrected(const Sample& before, const Sample& after);
    void sampleRemoved(const Sample& before);

    /// The point is removed with all that has been noted of it.
    void pointRemoved();

    /// Notes the samples that have not been yet.
    void finish();

private:
    // Samples to which the same happened.
    struct Samples
    {
        JsonArrayWriter before;
        JsonArrayWriter after;
        std::size_t count = 0;
    };

    void record(const char* action, std::string before, std::string after);
    void recordCorrected();
    void recordRemoved();

    Session& m_session;
    const MonitoredQuantity& m_quantity;
    const PointLocation& m_point;
    const Author& m_author;
    std::string m_history;
    Samples m_corrected;
    Samples m_removed;
};

} // namespace monitorservice
