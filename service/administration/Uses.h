#pragma once

#include "domain/SubCategory.h"
#include "store/Session.h"

#include <string>

namespace monitorservice {

/// What still uses something that is to be removed, for a message: "monitorings: 2, grants: 1". Empty when
/// nothing does.
std::string usesOfProject(const Session& session, const std::string& project);
std::string usesOfCategory(const Session& session, const std::string& category);
std::string usesOfSubCategory(const Session& session, const SubCategory& subCategory);

/// Throws AdministrationError with the uses, if there are any. The kind is such as "project"; `name` is how
/// the message calls the thing behind it.
void requireUnused(const std::string& kind, const std::string& name, const std::string& uses);

} // namespace monitorservice
