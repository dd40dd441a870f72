#pragma once

#include "administration/Administered.h"
#include "store/Session.h"

#include <string>

namespace monitorservice {

/// Adds, renames and removes categories, in a session that the caller commits. The audit trail tells of it,
/// as of the whole service; a change that changes nothing leaves no entry. Every member throws
/// AdministrationError; of a bad name the subject is "category".
class CategoryAdministration
{
public:
    /// The session must outlive the object. `author` is who the trail names.
    CategoryAdministration(Session& session, std::string author);

    /// What can be said against a name before there are data.
    static void check(const std::string& category);

    /// A contradiction when it is there already.
    Administered<std::string> add(const std::string& category);
    /// Renames it in all projects, with all that is of it.
    Administered<std::string> rename(const std::string& category, const std::string& name);
    /// Removes a category that nothing is of; gives what it was.
    std::string remove(const std::string& category);

private:
    Session& m_session;
    std::string m_author;
};

/// The document under which a category is answered.
std::string categoryDocument(const std::string& category);

} // namespace monitorservice
