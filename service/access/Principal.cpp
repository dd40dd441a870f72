#include "access/Principal.h"

#include <utility>

namespace monitorservice {

Principal::Principal(std::string owner, const std::vector<Grant>& grants, std::string token)
    : m_owner(std::move(owner)), m_token(std::move(token))
{
    for (const Grant& grant : grants) {
        if (!grant.project) {
            m_mayAdminister = m_mayAdminister || grant.rights.has(Right::Administer);
            continue;
        }
        const Rights inProject = grant.rights.without(Right::Administer);
        if (inProject.empty()) {
            continue;
        }
        ProjectRights& project = m_projects[*grant.project];
        Rights& rights = grant.category ? project.byCategory[*grant.category] : project.everywhere;
        rights = rights | inProject;
    }
}

const Principal::ProjectRights* Principal::rightsIn(const std::string& project) const
{
    const auto found = m_projects.find(project);
    return found == m_projects.end() ? nullptr : &found->second;
}

bool Principal::may(Right right, const std::string& project, const std::string& category) const
{
    const ProjectRights* const rights = rightsIn(project);
    if (rights == nullptr) {
        return false;
    }
    const auto inCategory = rights->byCategory.find(category);
    return rights->everywhere.has(right) ||
           (inCategory != rights->byCategory.end() && inCategory->second.has(right));
}

bool Principal::mayAnywhere(Right right, const std::string& project) const
{
    const auto categories = categoriesWith(right, project);
    return !categories || !categories->empty();
}

std::optional<std::vector<std::string>> Principal::categoriesWith(Right right,
                                                                  const std::string& project) const
{
    std::vector<std::string> categories;
    if (const ProjectRights* const rights = rightsIn(project)) {
        if (rights->everywhere.has(right)) {
            return std::nullopt;
        }
        for (const auto& [category, held] : rights->byCategory) {
            if (held.has(right)) {
                categories.push_back(category);
            }
        }
    }
    return categories;
}

bool Principal::isKnownIn(const std::string& project) const
{
    return rightsIn(project) != nullptr;
}

std::vector<HeldRights> Principal::allRights() const
{
    std::vector<HeldRights> all;
    if (m_mayAdminister) {
        all.push_back({std::nullopt, std::nullopt, Right::Administer});
    }
    for (const auto& [project, rights] : m_projects) {
        if (!rights.everywhere.empty()) {
            all.push_back({project, std::nullopt, rights.everywhere});
        }
        for (const auto& [category, held] : rights.byCategory) {
            all.push_back({project, category, held});
        }
    }
    return all;
}

} // namespace monitorservice
