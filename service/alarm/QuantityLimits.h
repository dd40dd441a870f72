#pragma once

#include "alarm/Thresholds.h"
#include "domain/Group.h"
#include "domain/MonitoredQuantity.h"
#include "store/Session.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// A group, and its limits as variations are compared with them.
struct LimitingGroup
{
    Group group;
    Limits limits;
};

/// Which groups limit the points of a monitoring and sub-category, as of when it was made.
class QuantityLimits
{
public:
    QuantityLimits(const Session& session, const MonitoredQuantity& quantity);

    /// Tells the store that those of the quantity are about to be made.
    static void expect(const Session& session, const MonitoredQuantity& quantity);

    /// The groups with a limit that list the name, by identifier; they live as long as this.
    const std::vector<const LimitingGroup*>& of(std::string_view name) const;

private:
    void add(Group group);

    std::deque<LimitingGroup> m_groups;
    std::map<std::string, std::vector<const LimitingGroup*>, std::less<>> m_byName;
    std::vector<const LimitingGroup*> m_none;
};

} // namespace monitorservice
