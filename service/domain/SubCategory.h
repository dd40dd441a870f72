#pragma once

#include <string>

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

/// The document under which it is stored and answered: "_id", "projectId", "name", "category" and "alias".
std::string toDocument(const SubCategory& subCategory);

} // namespace monitorservice
