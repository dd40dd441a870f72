#include "domain/SubCategory.h"

#include "domain/DocumentReader.h"
#include "json/JsonText.h"

namespace monitorservice {

namespace {

SubCategoryKind kindOf(const DocumentReader& document)
{
    const std::optional<SubCategoryKind> kind = subCategoryKindOf(document.text("kind"));
    if (!kind) {
        document.refuse("\"kind\" is none that there is");
    }
    return *kind;
}

} // namespace

std::string toDocument(const SubCategory& subCategory)
{
    JsonObjectWriter document;
    document.text("_id", subCategory.id)
        .text("projectId", subCategory.project)
        .text("name", subCategory.name)
        .text("category", subCategory.category)
        .text("alias", subCategory.alias)
        .text("kind", toText(subCategory.kind))
        .text("unit", subCategory.unit);
    if (subCategory.decimals) {
        document.integer("decimals", *subCategory.decimals);
    } else {
        document.null("decimals");
    }
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
    subCategory.kind = kindOf(document);
    subCategory.unit = document.text("unit");
    subCategory.decimals = document.smallIntegerOrNull("decimals");
    return subCategory;
}

} // namespace monitorservice
