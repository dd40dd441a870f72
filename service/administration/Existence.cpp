#include "administration/Existence.h"

#include "administration/AdministrationError.h"

#include <algorithm>

namespace monitorservice {

Project requireProject(const Session& session, const std::string& id)
{
    std::optional<Project> project = session.projects().find(id);
    if (!project) {
        throw noSuch("project", id);
    }
    return std::move(*project);
}

void requireCategory(const Session& session, const std::string& category)
{
    if (!session.categories().contains(category)) {
        throw noSuch("category", category);
    }
}

SubCategory requireSubCategory(const Session& session, const std::string& id)
{
    const std::optional<StoredDocument> stored = session.documents(DocumentKind::SubCategory).find(id);
    if (!stored) {
        throw noSuch("sub-category", id);
    }
    return fromDocument<SubCategory>(stored->text);
}

Token requireToken(const Session& session, const std::string& id)
{
    std::optional<Token> token = session.tokens().find(id);
    if (!token) {
        throw noSuch("token", id);
    }
    return std::move(*token);
}

Grant requireGrant(const Session& session, const std::string& id)
{
    const std::vector<Grant> grants = session.grants().list();
    const auto grant =
        std::find_if(grants.begin(), grants.end(), [&id](const Grant& one) { return one.id == id; });
    if (grant == grants.end()) {
        throw noSuch("grant", id);
    }
    return *grant;
}

std::vector<SubCategory> subCategoriesOf(const Session& session, const std::string& project)
{
    std::vector<SubCategory> subCategories;
    DocumentQuery query;
    query.project = project;
    session.documents(DocumentKind::SubCategory).visit(query, [&](std::string_view document) {
        subCategories.push_back(fromDocument<SubCategory>(document));
    });
    return subCategories;
}

} // namespace monitorservice
