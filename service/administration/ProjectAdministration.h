#pragma once

#include "administration/Administered.h"
#include "domain/Project.h"
#include "store/Session.h"

#include <string>

namespace monitorservice {

/// What a new project is told by.
struct ProjectDescription
{
    std::string name;
    std::string timeZone;
};

/// Makes, renames and removes projects, in a session that the caller commits. The audit trail tells of it, as
/// of the project; a change that changes nothing leaves no entry. Every member throws AdministrationError.
class ProjectAdministration
{
public:
    /// The session must outlive the object. `author` is who the trail names.
    ProjectAdministration(Session& session, std::string author);

    /// What can be said against a description before there are data.
    static void check(const ProjectDescription& description);

    Administered<Project> create(const ProjectDescription& description);
    Administered<Project> rename(const std::string& id, const std::string& name);
    /// Removes a project that nothing uses; gives what it was. Its entries in the audit trail stay.
    Project remove(const std::string& id);

private:
    Session& m_session;
    std::string m_author;
};

} // namespace monitorservice
