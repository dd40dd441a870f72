#pragma once

#include "access/Grant.h"
#include "store/Session.h"

#include <string>

namespace monitorservice {

/// Gives rights and takes them back, in a session that the caller commits. The audit trail tells of it, as of
/// the project and category that they are for; a change that changes nothing leaves no entry. Every member
/// throws AdministrationError.
class GrantAdministration
{
public:
    /// The session must outlive the object. `author` is who the trail names.
    GrantAdministration(Session& session, std::string author);

    /// Adds the rights to those of the same token, project and category; gives the grant that holds them now.
    /// Identifier and time are its own. A contradiction when the token has been revoked.
    Grant add(Grant grant);
    /// Gives what it was.
    Grant revoke(const std::string& id);

private:
    Session& m_session;
    std::string m_author;
};

/// The document under which a grant is told of.
std::string toDocument(const Grant& grant);

} // namespace monitorservice
