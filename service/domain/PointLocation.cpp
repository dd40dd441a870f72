#include "domain/PointLocation.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

namespace {

constexpr const char* documentName = "point location";

std::optional<double> initialValueIn(const DocumentReader& document)
{
    const double initialValue = document.number("initialValue");
    return document.boolean("hasInitialValue") ? std::optional(initialValue) : std::nullopt;
}

} // namespace

std::string toDocument(const PointLocation& pointLocation)
{
    JsonObjectWriter document;
    document.text("_id", pointLocation.id)
        .text("projectId", pointLocation.project)
        .text("cellId", pointLocation.cell)
        .text("subCategoryId", pointLocation.subCategory)
        .text("alias", pointLocation.alias)
        .text("name", pointLocation.name)
        .integer("dataType", pointLocation.dataType)
        .number("initialValue", pointLocation.initialValue.value_or(0))
        .boolean("hasInitialValue", pointLocation.initialValue.has_value())
        .text("offsetDirection", pointLocation.offsetDirection)
        .text("depth", pointLocation.depth)
        .integer("insertCount", pointLocation.insertCount)
        .integer("lastCount", pointLocation.lastCount)
        .text("lastDate", pointLocation.lastDate)
        .text("fileId", pointLocation.fileId)
        .json("links", pointLocation.links);
    return appendStamp(document, pointLocation.stamp).finish();
}

template <>
PointLocation fromDocument<PointLocation>(std::string_view text)
{
    const DocumentReader document(documentName, text);
    PointLocation pointLocation;
    pointLocation.id = document.text("_id");
    pointLocation.project = document.text("projectId");
    pointLocation.cell = document.text("cellId");
    pointLocation.subCategory = document.text("subCategoryId");
    pointLocation.alias = document.text("alias");
    pointLocation.name = document.text("name");
    pointLocation.dataType = document.smallInteger("dataType");
    pointLocation.initialValue = initialValueIn(document);
    pointLocation.offsetDirection = document.text("offsetDirection");
    pointLocation.depth = document.text("depth");
    pointLocation.insertCount = document.integer("insertCount");
    pointLocation.lastCount = document.smallInteger("lastCount");
    pointLocation.lastDate = document.text("lastDate");
    pointLocation.fileId = document.text("fileId");
    pointLocation.links = document.json("links");
    pointLocation.stamp = document.stamp();
    return pointLocation;
}

std::optional<double> initialValueIn(std::string_view document)
{
    return initialValueIn(DocumentReader(documentName, document));
}

} // namespace monitorservice
