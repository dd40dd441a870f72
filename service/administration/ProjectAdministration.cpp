#include "administration/ProjectAdministration.h"

#include "administration/AdministrationError.h"
#include "administration/Existence.h"
#include "administration/NearNames.h"
#include "administration/TextCheck.h"
#include "administration/Uses.h"
#include "time/TimeZone.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

// What is common to the entries of the audit trail about a project.
Change projectChange(const char* action, const Project& project, const std::string& author)
{
    Change change;
    change.project = project.id;
    change.action = action;
    change.subject = project.id;
    change.name = project.name;
    change.author.name = author;
    return change;
}

std::vector<std::string> warningsOf(const Session& session, const Project& project)
{
    std::vector<std::string> warnings;
    for (const Project& other : session.projects().list()) {
        const bool isLike = other.name == project.name || differInCaseOnly(other.name, project.name);
        if (other.id != project.id && isLike) {
            warnings.push_back("project " + other.id + " is called \"" + other.name + "\" too");
        }
    }
    return warnings;
}

} // namespace

ProjectAdministration::ProjectAdministration(Session& session, std::string author)
    : m_session(session), m_author(std::move(author))
{
}

void ProjectAdministration::check(const ProjectDescription& description)
{
    requireText("name", description.name);
    if (!isTimeZone(description.timeZone)) {
        throw AdministrationError(AdministrationFailure::BadValue, "timeZone", description.timeZone,
                                  "is not a zone of this system's time zone database");
    }
}

Administered<Project> ProjectAdministration::create(const ProjectDescription& description)
{
    check(description);
    Project project{m_session.newIdentifier(), description.name, description.timeZone, m_session.now()};
    m_session.projects().insert(project);
    Change change = projectChange("project.created", project, m_author);
    change.after = toDocument(project);
    record(m_session, std::move(change));
    return {project, warningsOf(m_session, project)};
}

Administered<Project> ProjectAdministration::rename(const std::string& id, const std::string& name)
{
    requireText("name", name);
    Project project = requireProject(m_session, id);
    if (project.name != name) {
        Change change = projectChange("project.renamed", project, m_author);
        change.before = toDocument(project);
        project.name = name;
        change.name = name;
        change.after = toDocument(project);
        m_session.projects().rename(id, name);
        record(m_session, std::move(change));
    }
    return {project, warningsOf(m_session, project)};
}

Project ProjectAdministration::remove(const std::string& id)
{
    Project project = requireProject(m_session, id);
    requireUnused("project", id, usesOfProject(m_session, id));
    m_session.projects().remove(id);
    Change change = projectChange("project.removed", project, m_author);
    change.before = toDocument(project);
    record(m_session, std::move(change));
    return project;
}

} // namespace monitorservice
