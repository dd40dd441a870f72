#include "api/NameBody.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"

#include <optional>

namespace monitorservice {

std::string parseNameBody(std::string_view json)
{
    const JsonBody text(json);
    std::optional<std::string> sent;
    forEachMember(text.object(), "", [&sent](std::string_view name, simdjson::dom::element value) {
        if (name != "name") {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
        sent = textOf(value, "name");
    });
    requireMember(sent.has_value(), "name");
    return *sent;
}

} // namespace monitorservice
