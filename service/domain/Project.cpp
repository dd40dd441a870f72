#include "domain/Project.h"

#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const Project& project)
{
    return JsonObjectWriter()
        .text("_id", project.id)
        .text("name", project.name)
        .text("timeZone", project.timeZone)
        .finish();
}

} // namespace monitorservice
