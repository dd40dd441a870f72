#include "api/SubCategoryBody.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"

namespace monitorservice {

namespace {

SubCategoryKind parseKind(simdjson::dom::element value)
{
    const std::optional<SubCategoryKind> kind = subCategoryKindOf(textOf(value, "kind"));
    if (!kind) {
        std::string names;
        for (const SubCategoryKind one : allSubCategoryKinds) {
            names += (names.empty() ? "\"" : ", \"") + std::string(toText(one)) + "\"";
        }
        throw ApiError(400, "\"kind\" must be one of " + names);
    }
    return *kind;
}

// Takes over what may be sent at any time; false when the member is none of this.
bool take(SubCategoryDescription& description, std::string_view name, simdjson::dom::element value)
{
    if (name == "name") {
        description.name = textOf(value, "name");
    } else if (name == "alias") {
        description.alias = textOf(value, "alias");
    } else if (name == "kind") {
        description.kind = parseKind(value);
    } else if (name == "unit") {
        description.unit = textOf(value, "unit");
    } else if (name == "decimals") {
        description.decimals =
            value.is_null() ? std::optional<std::int32_t>() : std::optional(integerOf(value, "decimals"));
    } else {
        return false;
    }
    return true;
}

ApiError notSettable(std::string_view name)
{
    return {400, "\"" + std::string(name) + "\" is not a member that can be set"};
}

} // namespace

NewSubCategory parseNewSubCategory(std::string_view json)
{
    const JsonBody text(json);
    NewSubCategory made;
    std::optional<std::string> category;
    forEachMember(text.object(), "", [&](std::string_view name, simdjson::dom::element value) {
        if (name == "category") {
            category = textOf(value, "category");
        } else if (!take(made.description, name, value)) {
            throw notSettable(name);
        }
    });
    requireMember(made.description.name.has_value(), "name");
    requireMember(category.has_value(), "category");
    made.category = *category;
    return made;
}

SubCategoryDescription parseSubCategoryChange(std::string_view json)
{
    const JsonBody text(json);
    SubCategoryDescription description;
    forEachMember(text.object(), "", [&](std::string_view name, simdjson::dom::element value) {
        if (!take(description, name, value)) {
            throw notSettable(name);
        }
    });
    return description;
}

} // namespace monitorservice
