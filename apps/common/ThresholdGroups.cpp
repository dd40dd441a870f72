#include "ThresholdGroups.h"

#include "Lookup.h"
#include "RecordChecks.h"

namespace {

QString listingOf(const QString& name)
{
    return QStringLiteral("list the groups of \"%1\"").arg(name);
}

} // namespace

QList<PointLocSetting> groupsOfMonitoring(ServiceSession& session, const RKMonitoring& monitoring)
{
    const QString purpose = listingOf(monitoring.name);
    QList<PointLocSetting> groups;
    session.ask(purpose, [&] { return session.data().getGroupsByCellId(monitoring.id, groups, false); });
    requireIdentifiers(groups, purpose, QStringLiteral("groups"));
    return groups;
}

QList<PointLocSetting> groupsOfCategory(ServiceSession& session, const QString& category)
{
    const QString purpose = listingOf(category);
    QList<PointLocSetting> groups;
    session.ask(purpose, [&] { return session.projectData().getGroupsByCategory(category, groups); });
    requireIdentifiers(groups, purpose, QStringLiteral("groups"));
    return groups;
}

QList<PointLocSetting> groupsOfProject(ServiceSession& session)
{
    QList<PointLocSetting> groups;
    for (const QString& category : lookup::categories(session)) {
        groups.append(groupsOfCategory(session, category));
    }
    return groups;
}

bool hasSameLimits(const PointLocSetting& left, const PointLocSetting& right)
{
    return left.groupPoint == right.groupPoint && left.dayVarType == right.dayVarType &&
           left.dayVarValue == right.dayVarValue && left.totalVar == right.totalVar;
}
