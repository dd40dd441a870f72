#include "api/GroupBody.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "domain/Assign.h"

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
                       "\"" + name + "\" must not be negative: the amount of variations is compared with it");
    }
    return limit;
}

LimitSide parseSide(simdjson::dom::element value, const std::string& name)
{
    const std::optional<LimitSide> side = limitSideOf(textOf(value, name));
    if (!side) {
        throw ApiError(400, "\"" + name + "\" must be \"both\", \"rising\" or \"falling\"");
    }
    return *side;
}

double parseWarningLevel(simdjson::dom::element value)
{
    const double level = numberOf(value, "warningLevel");
    if (level <= 0 || level > 100) {
        throw ApiError(400,
                       "\"warningLevel\" is in percent of a limit: it must be more than 0 and at most 100");
    }
    return level;
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
        } else if (name == "dayVarSide") {
            body.daySide = parseSide(value, "dayVarSide");
        } else if (name == "totalVarSide") {
            body.totalSide = parseSide(value, "totalVarSide");
        } else if (name == "warningLevel") {
            body.warningLevel = parseWarningLevel(value);
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
    changed = assign(group.totalVariation, body.totalVariation) || changed;
    changed = assign(group.daySide, body.daySide) || changed;
    changed = assign(group.totalSide, body.totalSide) || changed;
    return assign(group.warningLevel, body.warningLevel) || changed;
}

} // namespace monitorservice
