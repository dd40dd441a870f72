#include "CompletionValues.h"

#include "Lookup.h"
#include "ServiceSession.h"
#include "ThresholdGroups.h"
#include "extensions/ServiceExtensions.h"

#include <QMap>
#include <QPair>

#include <algorithm>

namespace {

using Named = QList<QPair<QString, QString>>; // identifier and name

Named monitorings(ServiceSession& session)
{
    Named found;
    session.ask(QStringLiteral("list monitorings"),
                [&] { return session.projectData().getCellIdAndName(found); });
    return found;
}

Named subCategories(ServiceSession& session)
{
    Named found;
    const QList<RKMonitoringSubCategory> known = lookup::subCategories(session);
    for (const RKMonitoringSubCategory& subCategory : known) {
        found.append({subCategory.id, subCategory.name});
        if (!subCategory.alias.isEmpty()) {
            found.append({subCategory.id, subCategory.alias});
        }
    }
    return found;
}

Named groups(ServiceSession& session)
{
    Named found;
    const QList<PointLocSetting> known = groupsOfProject(session);
    for (const PointLocSetting& group : known) {
        found.append({group.id, group.groupName});
    }
    return found;
}

Named projects(ServiceSession& session)
{
    Named found;
    const QList<ServiceProject> known = session.extensions().projects();
    for (const ServiceProject& project : known) {
        found.append({project.id, project.name});
    }
    return found;
}

Named categories(ServiceSession& session)
{
    Named found;
    const QStringList known = lookup::categories(session);
    for (const QString& category : known) {
        found.append({QString(), category});
    }
    return found;
}

QStringList beginningWith(const QString& typed, const Named& known)
{
    QStringList names;
    QStringList identifiers;
    for (const auto& [id, name] : known) {
        if (name.startsWith(typed)) {
            names.append(name);
        }
        if (!typed.isEmpty() && id.startsWith(typed)) {
            identifiers.append(id);
        }
    }
    QStringList fitting = names + identifiers;
    fitting.removeDuplicates();
    return fitting;
}

} // namespace

ConfigurationOverrides overridesIn(const QStringList& words)
{
    static const QMap<QString, QString ConfigurationOverrides::*> settings{
        {QStringLiteral("--base-api"), &ConfigurationOverrides::baseApi},
        {QStringLiteral("--project"), &ConfigurationOverrides::project},
        {QStringLiteral("--token-file"), &ConfigurationOverrides::tokenFile},
        {QStringLiteral("--config"), &ConfigurationOverrides::configFile},
        {QStringLiteral("--profile"), &ConfigurationOverrides::profile},
        {QStringLiteral("--ca-file"), &ConfigurationOverrides::caFile}};
    ConfigurationOverrides overrides;
    QStringList given = words;
    given.removeAll(QStringLiteral("=")); // the shell splits --option=value into three words
    for (int i = 0; i + 2 < given.size(); ++i) {
        if (settings.contains(given[i])) {
            overrides.*settings[given[i]] = given[i + 1];
        }
    }
    return overrides;
}

QStringList completionValues(const ConfigurationOverrides& overrides, const QString& kind,
                             const QString& typed)
{
    if (kind == QLatin1String("@profile")) {
        Named profiles;
        const QStringList known = configuredProfiles(overrides);
        for (const QString& profile : known) {
            profiles.append({QString(), profile});
        }
        return beginningWith(typed, profiles);
    }
    static const QMap<QString, Named (*)(ServiceSession&)> readers{
        {QStringLiteral("@category"), categories},
        {QStringLiteral("@group"), groups},
        {QStringLiteral("@monitoring"), monitorings},
        {QStringLiteral("@project"), projects},
        {QStringLiteral("@sub-category"), subCategories}};
    const auto read = readers.value(kind);
    if (read == nullptr) {
        return {};
    }
    ConfigurationOverrides brief = overrides;
    brief.deadline = QStringLiteral("2"); // seconds for a request: somebody waits at the keyboard
    ServiceSession session(readConfiguration(brief));
    return beginningWith(typed, read(session));
}
