#include "domain/Change.h"

#include "domain/DocumentReader.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const Change& change)
{
    return JsonObjectWriter()
        .text("_id", change.id)
        .text("projectId", change.project)
        .text("category", change.category)
        .text("cellId", change.cell)
        .text("subCategoryId", change.subCategory)
        .text("action", change.action)
        .text("subject", change.subject)
        .text("name", change.name)
        .json("before", change.before)
        .json("after", change.after)
        .text("delivery", change.delivery)
        .text("createdAt", change.author.time)
        .text("createdBy", change.author.name)
        .finish();
}

template <>
Change fromDocument<Change>(std::string_view text)
{
    const DocumentReader document("change", text);
    Change change;
    change.id = document.text("_id");
    change.project = document.text("projectId");
    change.category = document.text("category");
    change.cell = document.text("cellId");
    change.subCategory = document.text("subCategoryId");
    change.action = document.text("action");
    change.subject = document.text("subject");
    change.name = document.text("name");
    change.before = document.json("before");
    change.after = document.json("after");
    change.delivery = document.text("delivery");
    change.author = {document.text("createdBy"), document.text("createdAt")};
    return change;
}

} // namespace monitorservice
