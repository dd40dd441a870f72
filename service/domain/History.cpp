#include "domain/History.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const History& history)
{
    JsonObjectWriter document;
    document.text("_id", history.id)
        .text("dataManageId", history.dataManage)
        .integer("number", history.number)
        .text("lastDate", history.lastDate)
        .integer("lastCount", history.lastCount)
        .integer("sentCount", history.sentCount)
        .integer("insertCount", history.insertCount)
        .integer("correctCount", history.correctCount)
        .text("fileId", history.fileId);
    return appendStamp(document, history.stamp).finish();
}

template <>
History fromDocument<History>(std::string_view text)
{
    const DocumentReader document("history", text);
    History history;
    history.id = document.text("_id");
    history.dataManage = document.text("dataManageId");
    history.number = document.integer("number");
    history.lastDate = document.text("lastDate");
    history.lastCount = document.integer("lastCount");
    history.sentCount = document.integer("sentCount");
    history.insertCount = document.integer("insertCount");
    history.correctCount = document.integer("correctCount");
    history.fileId = document.text("fileId");
    history.stamp = document.stamp();
    return history;
}

} // namespace monitorservice
