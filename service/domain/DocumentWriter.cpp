#include "domain/DocumentWriter.h"

namespace monitorservice {

JsonObjectWriter& appendStamp(JsonObjectWriter& document, const Stamp& stamp)
{
    return document.text("createdAt", stamp.createdAt)
        .text("createdBy", stamp.createdBy)
        .text("updatedAt", stamp.updatedAt)
        .text("updatedBy", stamp.updatedBy);
}

std::string textArray(const std::vector<std::string>& texts)
{
    JsonArrayWriter array;
    for (const std::string& text : texts) {
        array.text(text);
    }
    return array.finish();
}

} // namespace monitorservice
