#pragma once

#include "access/Grant.h"
#include "access/Rights.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// Rights that are held in a project, or in the service as a whole.
struct HeldRights
{
    std::optional<std::string> project;  ///< nothing: the whole service
    std::optional<std::string> category; ///< nothing: every category, those added later too
    Rights rights;
};

/// Who sent a request, and what they may do. What a grant of the whole service gives is to administer it, and
/// nothing in its projects; a grant of a project never gives that.
class Principal
{
public:
    Principal(std::string owner, const std::vector<Grant>& grants, std::string token = {});

    /// The owner of the token.
    const std::string& owner() const { return m_owner; }

    /// The identifier of the token, never the token.
    const std::string& token() const { return m_token; }

    bool may(Right right, const std::string& project, const std::string& category) const;

    /// Whether the right is held in at least one category of the project, or in every one.
    bool mayAnywhere(Right right, const std::string& project) const;

    /// The categories of the project in which the right is held; nothing when it is held in every category.
    std::optional<std::vector<std::string>> categoriesWith(Right right, const std::string& project) const;

    /// Whether any right is held in any category of the project.
    bool isKnownIn(const std::string& project) const;

    /// Whether projects, categories and sub-categories may be administered.
    bool mayAdminister() const { return m_mayAdminister; }

    /// All rights, that of the whole service first, then by project and category; what is held in every
    /// category comes first.
    std::vector<HeldRights> allRights() const;

private:
    struct ProjectRights
    {
        Rights everywhere;
        std::map<std::string, Rights> byCategory;
    };

    const ProjectRights* rightsIn(const std::string& project) const;

    std::string m_owner;
    std::string m_token;
    bool m_mayAdminister = false;
    std::map<std::string, ProjectRights> m_projects;
};

} // namespace monitorservice
