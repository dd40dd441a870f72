#pragma once

#include "RequestFailure.h"

#include <QList>
#include <QString>
#include <RKMonitoringSubCategory.h>

#include <optional>

struct ServiceProject
{
    QString id;
    QString name;
    QString timeZone; ///< where its days begin: a name of the IANA time zone database
};

/// A sub-category with what it measures.
struct MeasuredSubCategory : RKMonitoringSubCategory
{
    /// "displacement", "settlement", "inclinometer", "water level", "force" or "other"; a later service may
    /// know more.
    QString kind;
    QString unit; ///< of the values; empty when it was not given
    /// Digits behind the point to show values with; nothing: as they are.
    std::optional<qint32> decimals;
};

namespace extensions {

/// GET projects, page by page.
QList<ServiceProject> readProjects(const RequestContext& context);

/// GET projects/{project}.
ServiceProject readProject(const RequestContext& context, const QString& id);

/// GET projects/{project}/subCategories, page by page.
QList<MeasuredSubCategory> readSubCategories(const RequestContext& context, const QString& project);

} // namespace extensions
