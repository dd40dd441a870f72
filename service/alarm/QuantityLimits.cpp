#include "alarm/QuantityLimits.h"

#include "store/QuantityQuery.h"

#include <set>
#include <utility>

namespace monitorservice {

QuantityLimits::QuantityLimits(const Session& session, const MonitoredQuantity& quantity)
{
    const QuantityQuery groups(quantity);
    session.documents(DocumentKind::Group).visit(groups.query(), [this](std::string_view document) {
        add(fromDocument<Group>(document));
    });
}

void QuantityLimits::expect(const Session& session, const MonitoredQuantity& quantity)
{
    session.documents(DocumentKind::Group).expect(QuantityQuery(quantity).query());
}

void QuantityLimits::add(Group group)
{
    if (group.dayVariation <= 0 && group.totalVariation <= 0) {
        return;
    }
    const Limits limits{static_cast<DayVariationKind>(group.dayVariationType), group.dayVariation,
                        group.totalVariation, group.daySide, group.totalSide};
    const LimitingGroup& added = m_groups.emplace_back(LimitingGroup{std::move(group), limits});
    for (const std::string& name : std::set(added.group.points.begin(), added.group.points.end())) {
        m_byName[name].push_back(&added);
    }
}

const std::vector<const LimitingGroup*>& QuantityLimits::of(std::string_view name) const
{
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? m_none : found->second;
}

} // namespace monitorservice
