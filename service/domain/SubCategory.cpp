#include "domain/SubCategory.h"

#include "domain/DocumentReader.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const SubCategory& subCategory)
{
    JsonObjectWriter document;
    document.text("_id", subCategory.id)
        .text("projectId", subCategory.project)
        .text("name", subCategory.name)
        .text("category", subCategory.category)
        .text("alias", subCategory.alias);
    return document.finish();
}

template <>
SubCategory fromDocument<SubCategory>(std::string_view text)
{
    const DocumentReader document("sub-category", text);
    SubCategory subCategory;
    subCategory.id = document.text("_id");
    subCategory.project = document.text("projectId");
    subCategory.name = document.text("name");
    subCategory.category = document.text("category");
    subCategory.alias = document.text("alias");
    return subCategory;
}

} // namespace monitorservice
