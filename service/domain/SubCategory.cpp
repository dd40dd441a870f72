#include "domain/SubCategory.h"

#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const SubCategory& subCategory)
{
    return JsonObjectWriter()
        .text("_id", subCategory.id)
        .text("projectId", subCategory.project)
        .text("name", subCategory.name)
        .text("category", subCategory.category)
        .text("alias", subCategory.alias)
        .finish();
}

} // namespace monitorservice
