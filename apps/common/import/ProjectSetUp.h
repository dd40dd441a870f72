#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportNote.h"
#include "import/ProjectFile.h"

#include <QMap>
#include <QString>

/// What a project file plans, on the service.
class ProjectSetUp
{
public:
    ProjectSetUp(ServiceSession& session, const ProjectFile& plan, ImportNotes notes);

    /// Finds the categories, sub-categories and monitorings. Throws a Failure that names every category and
    /// sub-category that is missing and the administrator's command that creates it.
    void find();

    /// Creates the monitorings and threshold groups that are missing; notes each, and groups whose limits
    /// differ from the plan, which stay as they are.
    void createMissing();

    /// Names of the planned monitorings that do not exist yet.
    QStringList missingMonitorings() const;

    /// Where the readings of `file` belong. The name of a monitoring that does not exist yet takes the place
    /// of its identifier.
    DeliveryTarget target(const PlannedFile& file) const;

private:
    void findSubCategories();
    void createMonitorings();
    void createGroups(const RKMonitoring& monitoring);
    QString subCategoryId(const QString& monitoring, const QString& text) const;

    ServiceSession& m_session;
    const ProjectFile& m_plan;
    ImportNotes m_notes;
    QMap<QString, QList<RKMonitoringSubCategory>> m_subCategories; // by category
    QMap<QString, RKMonitoring> m_monitorings;                     // by name
};
