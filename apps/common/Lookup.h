#pragma once

#include "ServiceSession.h"
#include "extensions/ServiceExtensions.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <RKConditions.h>
#include <RKMonitoring.h>
#include <RKMonitoringSubCategory.h>

#include <optional>

/// Finding what the user names.
namespace lookup {

/// The message of a name that several have: `candidates` are their identifiers with what tells them apart.
QString severalText(const QString& kind, const QString& text, const QStringList& candidates);

/// The project with this identifier, or of exactly this name, among those that the bearer has rights in.
/// Throws a Failure when there is none or several, and where the service does not tell its projects.
ServiceProject project(ServiceExtensions& extensions, const QString& text);

/// Restricts `condition` to monitorings of exactly this name.
void restrictToName(const QString& name, RKMonitoringCondition& condition);

/// The monitoring of exactly this name; nothing when there is none, a Failure when there are several.
std::optional<RKMonitoring> monitoringNamed(ServiceSession& session, const QString& name);

/// The monitoring with this identifier. Throws a Failure when there is none.
RKMonitoring monitoringById(ServiceSession& session, const QString& id);

/// The monitoring with this identifier, or that of the project with exactly this name. Throws a Failure when
/// there is none or several.
RKMonitoring monitoring(ServiceSession& session, const QString& text);

/// The categories of the service.
QStringList categories(ServiceSession& session);

QList<RKMonitoringSubCategory> subCategories(ServiceSession& session, const QString& category);

/// The same with what they measure, as far as the service tells that.
QList<MeasuredSubCategory> measuredSubCategories(ServiceSession& session, const QString& category);

/// Name of a monitoring; a request only for one that the library has not read yet. Empty for an empty
/// identifier.
QString monitoringName(ServiceSession& session, const QString& id);

/// Name of a monitoring, as the service has it now.
QString currentMonitoringName(ServiceSession& session, const QString& id);

/// Makes the names of several monitorings known by one request, as far as the service gives them in one.
void readMonitoringNames(ServiceSession& session, const QSet<QString>& ids);

/// The same for the monitorings of all `records`, each of which has a cellId.
template <typename Records>
void readMonitoringNamesOf(ServiceSession& session, const Records& records)
{
    QSet<QString> ids;
    for (const auto& record : records) {
        ids.insert(record.cellId);
    }
    readMonitoringNames(session, ids);
}

/// Name of a sub-category, in the same way as that of a monitoring.
QString subCategoryName(ServiceSession& session, const QString& id);

/// Throws the failure of a text that is the name or alias of several sub-categories.
[[noreturn]] void refuseSeveralSubCategories(const QString& text,
                                             const QList<RKMonitoringSubCategory>& subCategories);

/// The one of `known` with this identifier, name or alias; nothing when there is none, a Failure when
/// several.
template <typename SubCategory>
std::optional<SubCategory> subCategoryAmong(const QList<SubCategory>& known, const QString& text)
{
    QList<SubCategory> found;
    QList<RKMonitoringSubCategory> candidates;
    for (const SubCategory& subCategory : known) {
        if (subCategory.id == text) {
            return subCategory;
        }
        if (subCategory.name == text || subCategory.alias == text) {
            found.append(subCategory);
            candidates.append(subCategory);
        }
    }
    if (found.size() > 1) {
        refuseSeveralSubCategories(text, candidates);
    }
    return found.isEmpty() ? std::nullopt : std::make_optional(found.constFirst());
}

/// Throws the failure of a text that names no sub-category of `category`.
[[noreturn]] void refuseUnknownSubCategory(const QString& category, const QString& text);

/// The one of `known`, those of `category`, with this identifier, name or alias. Throws a Failure when there
/// is none, or several.
template <typename SubCategory>
SubCategory subCategoryOf(const QString& category, const QList<SubCategory>& known, const QString& text)
{
    const auto found = subCategoryAmong(known, text);
    if (!found) {
        refuseUnknownSubCategory(category, text);
    }
    return *found;
}

/// The sub-categories of the project, of every category.
QList<RKMonitoringSubCategory> subCategories(ServiceSession& session);

/// The sub-category with this identifier, or that of the project with this name or alias. Throws a Failure
/// when there is none or several.
RKMonitoringSubCategory subCategory(ServiceSession& session, const QString& text);

/// The sub-category of `category` with this identifier, name or alias. Throws a Failure when there is none.
RKMonitoringSubCategory subCategory(ServiceSession& session, const QString& category, const QString& text);

} // namespace lookup
