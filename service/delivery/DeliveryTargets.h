#pragma once

#include "delivery/Delivery.h"
#include "domain/MonitoredQuantity.h"
#include "store/Store.h"
#include "time/LocalDays.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace monitorservice {

/// Whether the sender has a right in a category of a project.
using MayDo = std::function<bool(Right right, const std::string& project, const std::string& category)>;

/// What a delivery brings readings of.
struct DeliveryTarget
{
    MonitoredQuantity quantity;
    bool mayEdit = false; ///< the sender may change what is there, not only add to it
    std::shared_ptr<LocalDays> days;
};

/// What a session needs that takes the delivery in.
Claim claimOf(const Delivery& delivery);

/// What it looks up first.
Expectations expectationsOf(const Delivery& delivery);

/// The target that is there already; whether anybody may edit it is not asked.
DeliveryTarget targetOf(const Session& session, const std::string& cell, const std::string& subCategory);

/// Finds the targets of a delivery, each once.
class DeliveryTargets
{
public:
    DeliveryTargets(const Session& session, MayDo mayDo) : m_session(session), m_mayDo(std::move(mayDo)) {}

    /// The target of a point. Throws DeliveryRefusal when its monitoring or sub-category does not exist or
    /// cannot be read, when they are not of one project and category, or when the sender may not deliver
    /// there. The reference stays valid.
    const DeliveryTarget& of(const Delivery& delivery, const DeliveredPoint& point);

private:
    DeliveryTarget find(const std::string& place, const DeliveredPoint& point);
    std::shared_ptr<LocalDays> daysOf(const std::string& project);

    const Session& m_session;
    MayDo m_mayDo;
    std::map<std::pair<std::string, std::string>, DeliveryTarget> m_found;
    std::map<std::string, std::shared_ptr<LocalDays>> m_days;
};

} // namespace monitorservice
