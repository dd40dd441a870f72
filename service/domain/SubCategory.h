#pragma once

#include "domain/Document.h"
#include "domain/SubCategoryKind.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// A kind of measurement within a category, of one project.
struct SubCategory
{
    std::string id;
    std::string project;
    std::string name;
    std::string category;
    std::string alias; ///< short name; may be empty
    SubCategoryKind kind = SubCategoryKind::Other;
    std::string unit = {};                               ///< of its values, such as "mm"; may be empty
    std::optional<std::int32_t> decimals = std::nullopt; ///< to show values with; nothing: as they are
};

/// The document under which it is stored and answered.
std::string toDocument(const SubCategory& subCategory);

template <>
SubCategory fromDocument<SubCategory>(std::string_view text);

} // namespace monitorservice
