#include "domain/Group.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const Group& group)
{
    JsonObjectWriter document;
    document.text("_id", group.id)
        .text("projectId", group.project)
        .text("cellId", group.cell)
        .text("subCategoryId", group.subCategory)
        .text("groupName", group.name)
        .json("groupPoint", textArray(group.points))
        .integer("dayVarType", group.dayVariationType)
        .number("dayVarValue", group.dayVariation)
        .number("totalVar", group.totalVariation)
        .text("viewPortId", group.viewPort)
        .text("dayVarSide", toText(group.daySide))
        .text("totalVarSide", toText(group.totalSide))
        .number("warningLevel", group.warningLevel);
    return appendStamp(document, group.stamp).finish();
}

template <>
Group fromDocument<Group>(std::string_view text)
{
    const DocumentReader document("group", text);
    Group group;
    group.id = document.text("_id");
    group.project = document.text("projectId");
    group.cell = document.text("cellId");
    group.subCategory = document.text("subCategoryId");
    group.name = document.text("groupName");
    group.points = document.texts("groupPoint");
    group.dayVariationType = document.smallInteger("dayVarType");
    group.dayVariation = document.number("dayVarValue");
    group.totalVariation = document.number("totalVar");
    group.viewPort = document.text("viewPortId");
    group.daySide = document.limitSide("dayVarSide");
    group.totalSide = document.limitSide("totalVarSide");
    group.warningLevel = document.number("warningLevel");
    group.stamp = document.stamp();
    return group;
}

} // namespace monitorservice
