#include "domain/DataManage.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const DataManage& dataManage)
{
    JsonObjectWriter document;
    document.text("_id", dataManage.id)
        .text("projectId", dataManage.project)
        .text("cellId", dataManage.cell)
        .text("subCategoryId", dataManage.subCategory)
        .text("lastDate", dataManage.lastDate)
        .integer("lastCount", dataManage.lastCount)
        .integer("sampleCount", dataManage.sampleCount)
        .integer("deliveries", dataManage.deliveries)
        .text("fileId", dataManage.fileId);
    return appendStamp(document, dataManage.stamp).finish();
}

template <>
DataManage fromDocument<DataManage>(std::string_view text)
{
    const DocumentReader document("data manage", text);
    DataManage dataManage;
    dataManage.id = document.text("_id");
    dataManage.project = document.text("projectId");
    dataManage.cell = document.text("cellId");
    dataManage.subCategory = document.text("subCategoryId");
    dataManage.lastDate = document.text("lastDate");
    dataManage.lastCount = document.integer("lastCount");
    dataManage.sampleCount = document.integer("sampleCount");
    dataManage.deliveries = document.integer("deliveries");
    dataManage.fileId = document.text("fileId");
    dataManage.stamp = document.stamp();
    return dataManage;
}

} // namespace monitorservice
