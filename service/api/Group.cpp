#include "api/Group.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "domain/Assign.h"
#include "json/JsonText.h"
#include "json/StoredText.h"
#include "store/StoreError.h"

namespace monitorservice {

namespace {

std::vector<std::string> parsePoints(simdjson::dom::element value)
{
    std::vector<std::string> points;
    for (const simdjson::dom::element element : arrayOf(value, "groupPoint")) {
        points.push_back(nonEmptyTextOf(element, "groupPoint[" + std::to_string(points.size()) + "]"));
    }
    return points;
}

std::int32_t parseDayVariationType(simdjson::dom::element value)
{
    const std::int32_t type = integerOf(value, "dayVarType");
    if (type != 0 && type != 1) {
        throw ApiError(400, "\"dayVarType\" must be 0 for the unit of the values or 1 for percent of the "
                            "initial value, not " +
                                std::to_string(type));
    }
    return type;
}

double parseLimit(simdjson::dom::element value, const std::string& name)
{
    const double limit = numberOf(value, name);
    if (limit < 0) {
        throw ApiError(400,
                       "\"" + name + "\" must not be negative: variations either way are compared with it");
    }
    return limit;
}

} // namespace

GroupBody parseGroupBody(std::string_view json)
{
    const JsonBody text(json);
    GroupBody body;
    forEachMember(text.object(), "", [&body](std::string_view name, simdjson::dom::element value) {
        if (name == "projectId") {
            body.project = nonEmptyTextOf(value, "projectId");
        } else if (name == "cellId") {
            body.cell = nonEmptyTextOf(value, "cellId");
        } else if (name == "subCategoryId") {
            body.subCategory = nonEmptyTextOf(value, "subCategoryId");
        } else if (name == "groupName") {
            body.name = nonEmptyTextOf(value, "groupName");
        } else if (name == "groupPoint") {
            body.points = parsePoints(value);
        } else if (name == "dayVarType") {
            body.dayVariationType = parseDayVariationType(value);
        } else if (name == "dayVarValue") {
            body.dayVariation = parseLimit(value, "dayVarValue");
        } else if (name == "totalVar") {
            body.totalVariation = parseLimit(value, "totalVar");
        } else {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
    });
    return body;
}

bool applyTo(Group& group, const GroupBody& body)
{
    bool changed = assign(group.cell, body.cell);
    changed = assign(group.subCategory, body.subCategory) || changed;
    changed = assign(group.name, body.name) || changed;
    changed = assign(group.points, body.points) || changed;
    changed = assign(group.dayVariationType, body.dayVariationType) || changed;
    changed = assign(group.dayVariation, body.dayVariation) || changed;
    return assign(group.totalVariation, body.totalVariation) || changed;
}

std::string toDocument(const Group& group)
{
    JsonArrayWriter points;
    for (const std::string& point : group.points) {
        points.text(point);
    }
    return JsonObjectWriter()
        .text("_id", group.id)
        .text("projectId", group.project)
        .text("cellId", group.cell)
        .text("subCategoryId", group.subCategory)
        .text("groupName", group.name)
        .json("groupPoint", points.finish())
        .integer("dayVarType", group.dayVariationType)
        .number("dayVarValue", group.dayVariation)
        .number("totalVar", group.totalVariation)
        .text("viewPortId", group.viewPort)
        .text("createdAt", group.createdAt)
        .text("createdBy", group.createdBy)
        .text("updatedAt", group.updatedAt)
        .text("updatedBy", group.updatedBy)
        .finish();
}

Group groupOf(const std::string& document)
{
    try {
        simdjson::dom::parser parser;
        const simdjson::dom::element object = parser.parse(document);
        Group group;
        group.id = storedText(object, "_id");
        group.project = storedText(object, "projectId");
        group.cell = storedText(object, "cellId");
        group.subCategory = storedText(object, "subCategoryId");
        group.name = storedText(object, "groupName");
        const simdjson::dom::array points = object["groupPoint"];
        for (const simdjson::dom::element point : points) {
            group.points.emplace_back(point.get_string().value());
        }
        group.dayVariationType = static_cast<std::int32_t>(object["dayVarType"].get_int64().value());
        group.dayVariation = object["dayVarValue"].get_double().value();
        group.totalVariation = object["totalVar"].get_double().value();
        group.viewPort = storedText(object, "viewPortId");
        group.createdAt = storedText(object, "createdAt");
        group.createdBy = storedText(object, "createdBy");
        group.updatedAt = storedText(object, "updatedAt");
        group.updatedBy = storedText(object, "updatedBy");
        return group;
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored group is damaged: ") + error.what());
    }
}

} // namespace monitorservice
