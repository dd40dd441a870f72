#pragma once

#include "domain/Document.h"

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
};

/// The document under which it is stored and answered.
std::string toDocument(const SubCategory& subCategory);

template <>
SubCategory fromDocument<SubCategory>(std::string_view text);

} // namespace monitorservice
