#include "import/ProjectSetUp.h"

#include "Lookup.h"
#include "ThresholdGroups.h"

#include <algorithm>
#include <utility>

namespace {

// `text` as one word of a shell.
QString shellWord(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) + QLatin1Char('\'');
}

} // namespace

ProjectSetUp::ProjectSetUp(ServiceSession& session, const ProjectFile& plan, ImportNotes notes)
    : m_session(session), m_plan(plan), m_notes(std::move(notes))
{
}

void ProjectSetUp::find()
{
    findSubCategories();
    for (const RKMonitoring& planned : m_plan.monitorings) {
        if (const auto found = lookup::monitoringNamed(m_session, planned.name)) {
            if (found->category != planned.category) {
                throw Failure(
                    FailureKind::Other,
                    QStringLiteral("the monitoring \"%1\" is of category \"%2\", but planned in \"%3\"")
                        .arg(found->name, found->category, planned.category));
            }
            m_monitorings.insert(found->name, *found);
        }
    }
}

void ProjectSetUp::findSubCategories()
{
    QStringList commands;
    const QStringList categories = lookup::categories(m_session);
    for (const QString& category : m_plan.categories) {
        if (categories.contains(category)) {
            m_subCategories.insert(category, lookup::subCategories(m_session, category));
        } else {
            commands.append(
                QStringLiteral("monitor-service admin --data FILE category add %1").arg(shellWord(category)));
        }
    }
    for (const RKMonitoringSubCategory& planned : m_plan.subCategories) {
        if (!lookup::subCategoryAmong(m_subCategories.value(planned.category), planned.name)) {
            QString command =
                QStringLiteral("monitor-service admin --data FILE subcategory create --project %1 "
                               "--category %2 --name %3")
                    .arg(m_session.project(), shellWord(planned.category), shellWord(planned.name));
            if (!planned.alias.isEmpty()) {
                command += QStringLiteral(" --alias ") + shellWord(planned.alias);
            }
            commands.append(command);
        }
    }
    if (!commands.isEmpty()) {
        throw Failure(
            FailureKind::Other,
            QStringLiteral("categories or sub-categories are missing, which the service's administrator "
                           "creates with: %1")
                .arg(commands.join(QStringLiteral("; "))));
    }
}

QStringList ProjectSetUp::missingMonitorings() const
{
    QStringList missing;
    for (const RKMonitoring& planned : m_plan.monitorings) {
        if (!m_monitorings.contains(planned.name)) {
            missing.append(planned.name);
        }
    }
    return missing;
}

void ProjectSetUp::createMissing()
{
    createMonitorings();
    for (const RKMonitoring& monitoring : qAsConst(m_monitorings)) {
        createGroups(monitoring);
    }
}

// Creating again is harmless: what a repeated import finds it does not create.

void ProjectSetUp::createMonitorings()
{
    for (const RKMonitoring& planned : m_plan.monitorings) {
        if (m_monitorings.contains(planned.name)) {
            continue;
        }
        RKMonitoring monitoring = planned;
        m_session.ask(
            QStringLiteral("create monitoring \"%1\"").arg(planned.name),
            [&] { return m_session.projectData().createMonitoring(monitoring); }, Repetition::IsHarmless);
        m_notes({ImportNote::Kind::Information,
                 QStringLiteral("created monitoring \"%1\" (%2)").arg(monitoring.name, monitoring.id)});
        m_monitorings.insert(monitoring.name, monitoring);
    }
}

void ProjectSetUp::createGroups(const RKMonitoring& monitoring)
{
    const QList<PointLocSetting> known = groupsOfMonitoring(m_session, monitoring);
    for (const PlannedGroup& planned : m_plan.groups) {
        if (planned.monitoring != monitoring.name) {
            continue;
        }
        PointLocSetting group = planned.setting;
        group.cellId = monitoring.id;
        group.subCategoryId = subCategoryId(planned.monitoring, planned.subCategory);
        const auto found = std::find_if(known.cbegin(), known.cend(), [&](const PointLocSetting& other) {
            return other.subCategoryId == group.subCategoryId && other.groupName == group.groupName;
        });
        if (found == known.cend()) {
            const QString name = group.groupName;
            m_session.ask(
                QStringLiteral("create group \"%1\"").arg(name),
                [&] { return m_session.projectData().createGroup(group); }, Repetition::IsHarmless);
            m_notes({ImportNote::Kind::Information,
                     QStringLiteral("created group \"%1\" of \"%2\"").arg(name, monitoring.name)});
        } else if (!hasSameLimits(*found, group)) {
            m_notes({ImportNote::Kind::Warning,
                     QStringLiteral("group \"%1\" of \"%2\" has other points or limits than the project "
                                    "file says; it stays as it is")
                         .arg(group.groupName, monitoring.name)});
        }
    }
}

QString ProjectSetUp::subCategoryId(const QString& monitoring, const QString& text) const
{
    const QString category = m_plan.monitoring(monitoring)->category;
    // Found by the planned name: an alias may be another one on the service.
    const QString name = m_plan.subCategory(category, text)->name;
    return lookup::subCategoryAmong(m_subCategories.value(category), name)->id;
}

DeliveryTarget ProjectSetUp::target(const PlannedFile& file) const
{
    const auto found = m_monitorings.constFind(file.monitoring);
    return {found == m_monitorings.constEnd() ? file.monitoring : found->id,
            subCategoryId(file.monitoring, file.subCategory)};
}
