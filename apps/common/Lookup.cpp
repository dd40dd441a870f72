#include "Lookup.h"

#include "Identifier.h"
#include "PagedReading.h"
#include "PlaceMarkers.h"
#include "RecordChecks.h"

#include <QStringList>

namespace lookup {

namespace {

QString readingOf(const QString& id)
{
    return QStringLiteral("read monitoring %1").arg(id);
}

} // namespace

QString severalText(const QString& kind, const QString& text, const QStringList& candidates)
{
    return QStringLiteral("several %1 are called \"%2\"; say which by its identifier: %3")
        .arg(kind, text, candidates.join(QStringLiteral(", ")));
}

ServiceProject project(ServiceExtensions& extensions, const QString& text)
{
    const QList<ServiceProject> projects = extensions.projects();
    QList<ServiceProject> found;
    QStringList candidates;
    for (const ServiceProject& project : projects) {
        if (project.id.compare(text, Qt::CaseInsensitive) == 0) {
            return project;
        }
        if (project.name == text) {
            found.append(project);
            candidates.append(QStringLiteral("%1 (%2)").arg(project.id, project.timeZone));
        }
    }
    if (found.isEmpty()) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("there is no project \"%1\" for this token").arg(text),
                      Remedy::ListProjects);
    }
    if (found.size() > 1) {
        throw Failure(FailureKind::BadInput, severalText(QStringLiteral("projects"), text, candidates));
    }
    return found.constFirst();
}

void restrictToName(const QString& name, RKMonitoringCondition& condition)
{
    if (markers::areIn(name)) {
        condition.name = markers::exactPattern(name);
    } else {
        condition.exactName = name;
    }
}

std::optional<RKMonitoring> monitoringNamed(ServiceSession& session, const QString& name)
{
    RKMonitoringCondition condition;
    restrictToName(name, condition);
    QList<RKMonitoring> found;
    session.ask(QStringLiteral("find the monitoring \"%1\"").arg(name), [&] {
        return session.projectData().getMonitoringRangeData(condition, 0, paging::pageRows, found);
    });
    if (found.size() > 1) {
        QStringList candidates;
        for (const RKMonitoring& monitoring : qAsConst(found)) {
            candidates.append(QStringLiteral("%1 (%2)").arg(monitoring.id, monitoring.category));
        }
        throw Failure(FailureKind::BadInput, severalText(QStringLiteral("monitorings"), name, candidates));
    }
    return found.isEmpty() ? std::nullopt : std::make_optional(found.constFirst());
}

RKMonitoring monitoringById(ServiceSession& session, const QString& id)
{
    const QString purpose = readingOf(id);
    RKMonitoring monitoring;
    session.ask(purpose, [&] { return session.data().getMonitoringById(id, monitoring, false); });
    if (monitoring.id.compare(id, Qt::CaseInsensitive) != 0) {
        throw Failure(FailureKind::BadAnswer,
                      QStringLiteral("cannot %1: the answer is not about this monitoring").arg(purpose));
    }
    return monitoring;
}

RKMonitoring monitoring(ServiceSession& session, const QString& text)
{
    if (isIdentifier(text)) {
        return monitoringById(session, text);
    }
    const auto found = monitoringNamed(session, text);
    if (!found) {
        throw Failure(FailureKind::NotFound, QStringLiteral("there is no monitoring \"%1\"").arg(text),
                      Remedy::ListMonitorings);
    }
    return *found;
}

QStringList categories(ServiceSession& session)
{
    QStringList found;
    session.ask(QStringLiteral("list categories"),
                [&] { return session.data().getMonitoringCategory(found); });
    return found;
}

QList<RKMonitoringSubCategory> subCategories(ServiceSession& session, const QString& category)
{
    QList<RKMonitoringSubCategory> found;
    session.ask(QStringLiteral("list the sub-categories of \"%1\"").arg(category),
                [&] { return session.projectData().getMonitoringSubCategory(category, found); });
    return found;
}

QList<MeasuredSubCategory> measuredSubCategories(ServiceSession& session, const QString& category)
{
    QList<MeasuredSubCategory> found;
    if (!session.extensions().has(Extension::SubCategoryKinds)) {
        for (const RKMonitoringSubCategory& known : subCategories(session, category)) {
            found.append(MeasuredSubCategory{known, {}, {}, {}});
        }
        return found;
    }
    session.projectData(); // refused first when there is no project
    for (const MeasuredSubCategory& known : session.extensions().subCategories(session.project())) {
        if (known.category == category) {
            found.append(known);
        }
    }
    return found;
}

QString monitoringName(ServiceSession& session, const QString& id)
{
    if (id.isEmpty()) {
        return QString();
    }
    return session.recall(readingOf(id), [&] { return session.data().getMonitoringName(id); });
}

QString currentMonitoringName(ServiceSession& session, const QString& id)
{
    return session.ask(readingOf(id), [&] { return session.data().getMonitoringName(id); });
}

void readMonitoringNames(ServiceSession& session, const QSet<QString>& ids)
{
    if (ids.size() < 2) {
        return;
    }
    QList<RKMonitoring> monitorings;
    session.ask(QStringLiteral("list monitorings"), [&] {
        return session.projectData().getMonitoringRangeData(RKMonitoringCondition(), 0, paging::pageRows,
                                                            monitorings);
    });
}

QString subCategoryName(ServiceSession& session, const QString& id)
{
    if (id.isEmpty()) {
        return QString();
    }
    RKMonitoringSubCategory subCategory;
    session.recall(QStringLiteral("read sub-category %1").arg(id),
                   [&] { return session.data().getSubCategoryById(id, subCategory); });
    return subCategory.name;
}

void refuseSeveralSubCategories(const QString& text, const QList<RKMonitoringSubCategory>& subCategories)
{
    QStringList candidates;
    for (const RKMonitoringSubCategory& subCategory : subCategories) {
        candidates.append(
            QStringLiteral("%1 (%2, %3)").arg(subCategory.id, subCategory.name, subCategory.category));
    }
    throw Failure(FailureKind::BadInput, severalText(QStringLiteral("sub-categories"), text, candidates));
}

void refuseUnknownSubCategory(const QString& category, const QString& text)
{
    throw Failure(FailureKind::NotFound,
                  QStringLiteral("\"%1\" has no sub-category \"%2\"").arg(category, text),
                  Remedy::ListSubCategories);
}

QList<RKMonitoringSubCategory> subCategories(ServiceSession& session)
{
    QList<RKMonitoringSubCategory> found;
    for (const QString& category : categories(session)) {
        found.append(subCategories(session, category));
    }
    return found;
}

RKMonitoringSubCategory subCategory(ServiceSession& session, const QString& text)
{
    if (isIdentifier(text)) {
        const QString purpose = QStringLiteral("read sub-category %1").arg(text);
        RKMonitoringSubCategory subCategory;
        session.ask(purpose, [&] { return session.data().getSubCategoryById(text, subCategory); });
        requireIdentifier(subCategory, purpose, QStringLiteral("a sub-category"));
        return subCategory;
    }
    const auto found = subCategoryAmong(subCategories(session), text);
    if (!found) {
        throw Failure(FailureKind::NotFound, QStringLiteral("there is no sub-category \"%1\"").arg(text),
                      Remedy::ListSubCategories);
    }
    return *found;
}

RKMonitoringSubCategory subCategory(ServiceSession& session, const QString& category, const QString& text)
{
    return subCategoryOf(category, subCategories(session, category), text);
}

} // namespace lookup
