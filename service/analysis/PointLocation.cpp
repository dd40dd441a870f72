#include "analysis/PointLocation.h"

#include "store/StoreError.h"
#include "json/JsonText.h"

#include <simdjson.h>

#include <string_view>

namespace monitorservice {

namespace {

// A point's document is read for every delivery that names it: the parser's buffers are kept.
simdjson::dom::parser& parser()
{
    thread_local simdjson::dom::parser instance;
    return instance;
}

std::string text(simdjson::dom::element object, const char* name)
{
    return std::string(object[name].get_string().value());
}

} // namespace

std::string toDocument(const PointLocation& point)
{
    return JsonObjectWriter()
        .text("_id", point.id)
        .text("projectId", point.project)
        .text("cellId", point.cell)
        .text("subCategoryId", point.subCategory)
        .text("alias", point.alias)
        .text("name", point.name)
        .integer("dataType", point.dataType)
        .number("initialValue", point.initialValue)
        .text("offsetDirection", point.offsetDirection)
        .text("depth", point.depth)
        .integer("insertCount", point.insertCount)
        .integer("lastCount", point.lastCount)
        .text("lastDate", point.lastDate)
        .text("fileId", point.fileId)
        .json("links", point.links)
        .text("createdAt", point.createdAt)
        .text("createdBy", point.createdBy)
        .text("updatedAt", point.updatedAt)
        .text("updatedBy", point.updatedBy)
        .finish();
}

PointLocation pointLocationOf(const std::string& document)
{
    try {
        const simdjson::dom::element object = parser().parse(document);
        PointLocation point;
        point.id = text(object, "_id");
        point.project = text(object, "projectId");
        point.cell = text(object, "cellId");
        point.subCategory = text(object, "subCategoryId");
        point.alias = text(object, "alias");
        point.name = text(object, "name");
        point.dataType = static_cast<std::int32_t>(object["dataType"].get_int64().value());
        point.initialValue = object["initialValue"].get_double().value();
        point.offsetDirection = text(object, "offsetDirection");
        point.depth = text(object, "depth");
        point.insertCount = object["insertCount"].get_int64().value();
        point.lastCount = static_cast<std::int32_t>(object["lastCount"].get_int64().value());
        point.lastDate = text(object, "lastDate");
        point.fileId = text(object, "fileId");
        point.links = simdjson::minify(object["links"].value());
        point.createdAt = text(object, "createdAt");
        point.createdBy = text(object, "createdBy");
        point.updatedAt = text(object, "updatedAt");
        point.updatedBy = text(object, "updatedBy");
        return point;
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored point location is damaged: ") + error.what());
    }
}

} // namespace monitorservice
