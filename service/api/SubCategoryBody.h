#pragma once

#include "administration/SubCategoryAdministration.h"

#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// What a client sends of a new sub-category.
struct NewSubCategory
{
    std::string category;
    SubCategoryDescription description;
};

/// Reads the body of a POST. Throws ApiError 400 that names the member.
NewSubCategory parseNewSubCategory(std::string_view json);

/// Reads the body of a PATCH: a member that was not sent is absent. Throws ApiError 400 that names the
/// member.
SubCategoryDescription parseSubCategoryChange(std::string_view json);

} // namespace monitorservice
