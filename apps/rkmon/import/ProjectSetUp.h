#pragma once

#include "Session.h"
#include "import/Deliveries.h"
#include "import/ProjectFile.h"

#include <QMap>
#include <QString>

/// What a project file plans, on the service.
class ProjectSetUp
{
public:
    ProjectSetUp(Session& session, const ProjectFile& plan);

    /// Finds the categories, sub-categories and monitorings. Throws a Failure that names every category and
    /// sub-category that is missing and the administrator's command that makes it.
    void find();

    /// Creates the monitorings and threshold groups that are missing; tells of each, and of groups whose
    /// limits are others than planned, which stay as they are.
    void createMissing();

    /// Names of the planned monitorings that are not there yet.
    QStringList missingMonitorings() const;

    /// Where the readings of `file` belong. Of a monitoring that is not there yet, its name
    /// stands for its identifier.
    DeliveryTarget target(const PlannedFile& file) const;

private:
    void findSubCategories();
    void createMonitorings();
    void createGroups(const RKMonitoring& monitoring);
    QString subCategoryId(const QString& monitoring, const QString& text) const;

    Session& m_session;
    const ProjectFile& m_plan;
    QMap<QString, QList<RKMonitoringSubCategory>> m_subCategories; // by category
    QMap<QString, RKMonitoring> m_monitorings;                     // by name
};
