#include "domain/Cell.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const Cell& cell)
{
    JsonObjectWriter document;
    document.text("_id", cell.id)
        .text("projectId", cell.project)
        .text("name", cell.name)
        .text("category", cell.category)
        .json("alarmTo", textArray(cell.alarmTo))
        .json("links", toJson(cell.links));
    return appendStamp(document, cell.stamp).finish();
}

template <>
Cell fromDocument<Cell>(std::string_view text)
{
    const DocumentReader document("monitoring", text);
    Cell cell;
    cell.id = document.text("_id");
    cell.project = document.text("projectId");
    cell.name = document.text("name");
    cell.category = document.text("category");
    cell.alarmTo = document.texts("alarmTo");
    cell.links = linksIn(document);
    cell.stamp = document.stamp();
    return cell;
}

} // namespace monitorservice
