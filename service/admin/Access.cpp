#include "admin/Access.h"

#include "admin/Secret.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace monitorservice {

namespace {

bool isScheme(std::string_view text)
{
    constexpr std::string_view scheme = "bearer";
    return std::equal(text.begin(), text.end(), scheme.begin(), scheme.end(), [](char given, char wanted) {
        return std::tolower(static_cast<unsigned char>(given)) == wanted;
    });
}

std::string_view tokenIn(const std::optional<std::string>& authorization)
{
    if (!authorization) {
        throw AuthenticationError("a token is needed: send \"Authorization: Bearer TOKEN\"");
    }
    std::string_view text = *authorization;
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos || !isScheme(text.substr(0, blank))) {
        throw AuthenticationError("Authorization must be \"Bearer TOKEN\"");
    }
    text.remove_prefix(std::min(text.find_first_not_of(' ', blank), text.size()));
    return text;
}

} // namespace

Principal::Principal(std::string owner, const std::vector<Grant>& grants) : m_owner(std::move(owner))
{
    for (const Grant& grant : grants) {
        ProjectRights& project = m_projects[grant.project];
        Rights& rights = grant.category ? project.byCategory[*grant.category] : project.everywhere;
        rights = rights | grant.rights;
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

Principal authenticate(const Session& session, const std::optional<std::string>& authorization)
{
    // Found by its hash: how long the search takes tells nothing about the tokens there are.
    const std::optional<Token> token = session.tokens().findBySecretHash(sha256(tokenIn(authorization)));
    if (!token) {
        throw AuthenticationError("the token is not known");
    }
    if (token->revokedAt) {
        throw AuthenticationError("the token has been revoked");
    }
    if (token->expiresAt && session.now() >= *token->expiresAt) {
        throw AuthenticationError("the token has expired");
    }
    return {token->owner, session.grants().ofToken(token->id)};
}

} // namespace monitorservice
