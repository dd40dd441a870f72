#include "domain/PointLocation.h"

#include "json/JsonText.h"
#include "json/StoredText.h"
#include "store/StoreError.h"

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
        point.id = storedText(object, "_id");
        point.project = storedText(object, "projectId");
        point.cell = storedText(object, "cellId");
        point.subCategory = storedText(object, "subCategoryId");
        point.alias = storedText(object, "alias");
        point.name = storedText(object, "name");
        point.dataType = static_cast<std::int32_t>(object["dataType"].get_int64().value());
        point.initialValue = object["initialValue"].get_double().value();
        point.offsetDirection = storedText(object, "offsetDirection");
        point.depth = storedText(object, "depth");
        point.insertCount = object["insertCount"].get_int64().value();
        point.lastCount = static_cast<std::int32_t>(object["lastCount"].get_int64().value());
        point.lastDate = storedText(object, "lastDate");
        point.fileId = storedText(object, "fileId");
        point.links = simdjson::minify(object["links"].value());
        point.createdAt = storedText(object, "createdAt");
        point.createdBy = storedText(object, "createdBy");
        point.updatedAt = storedText(object, "updatedAt");
        point.updatedBy = storedText(object, "updatedBy");
        return point;
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored point location is damaged: ") + error.what());
    }
}

} // namespace monitorservice
