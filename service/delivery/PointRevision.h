#pragma once

#include "alarm/Judgement.h"
#include "delivery/DeliveryTargets.h"
#include "delivery/DeliveryTrail.h"
#include "domain/PointLocation.h"
#include "domain/Sample.h"
#include "domain/Stamp.h"
#include "store/Session.h"
#include "store/StoredDocument.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>

namespace monitorservice {

/// Takes samples of a point away, gives samples the values that they had, and keeps what follows from that:
/// the point's number of samples and its latest one, the audit trail.
class PointRevision
{
public:
    /// All of it must outlive the revision.
    PointRevision(Session& session, const DeliveryTarget& target, const StoredPoint& stored,
                  const Author& author);

    /// Its description may be changed until finish().
    PointLocation& location() { return m_location; }

    /// The sample must be held.
    void remove(const Sample& sample);

    /// Gives the sample of this time and count the value and the flag; one that is not held stays so.
    void restore(const Sample& sample);

    /// Writes the point when anything has changed; `delivery` as in Measurements::replacePoint(). What it
    /// gives is to be judged.
    ChangedPoint finish(const std::optional<std::int64_t>& delivery);

    std::int64_t removed() const { return static_cast<std::int64_t>(m_removed.size()); }
    std::int64_t restored() const { return static_cast<std::int64_t>(m_restored.size()); }

private:
    std::optional<Instant> noteLatest();

    Session& m_session;
    const DeliveryTarget& m_target;
    const Author& m_author;
    std::int64_t m_key;
    PointLocation m_before;
    PointLocation m_location;
    DeliveryTrail m_trail;
    std::map<ReadingKey, Reading> m_restored;
    std::set<ReadingKey> m_removed;
};

} // namespace monitorservice
