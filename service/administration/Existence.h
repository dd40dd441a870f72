#pragma once

#include "domain/Project.h"
#include "domain/SubCategory.h"
#include "store/Session.h"

#include <string>
#include <vector>

namespace monitorservice {

// Each throws AdministrationError when there is none.

Project requireProject(const Session& session, const std::string& id);
void requireCategory(const Session& session, const std::string& category);
SubCategory requireSubCategory(const Session& session, const std::string& id);
Token requireToken(const Session& session, const std::string& id);
Grant requireGrant(const Session& session, const std::string& id);

/// By rising identifier.
std::vector<SubCategory> subCategoriesOf(const Session& session, const std::string& project);

} // namespace monitorservice
