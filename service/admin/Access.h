#pragma once

#include "store/Store.h"

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace monitorservice {

/// Who sent a request, and what they may do.
class Principal
{
public:
    Principal(std::string owner, const std::vector<Grant>& grants);

    /// The owner of the token.
    const std::string& owner() const { return m_owner; }

    bool may(Right right, const std::string& project, const std::string& category) const;

    /// Whether the right is held in at least one category of the project, or in every one.
    bool mayAnywhere(Right right, const std::string& project) const;

    /// The categories of the project in which the right is held; nothing when it is held in every category.
    std::optional<std::vector<std::string>> categoriesWith(Right right, const std::string& project) const;

private:
    struct ProjectRights
    {
        Rights everywhere;
        std::map<std::string, Rights> byCategory;
    };

    const ProjectRights* rightsIn(const std::string& project) const;

    std::string m_owner;
    std::map<std::string, ProjectRights> m_projects;
};

/// Nobody can be let in on what was shown. The message is for the client.
class AuthenticationError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The bearer of the token in an Authorization field (RFC 6750, section 2.1), as the session sees the token
/// and its grants: what was revoked before the session began holds no longer. Throws AuthenticationError.
Principal authenticate(const Session& session, const std::optional<std::string>& authorization);

} // namespace monitorservice
