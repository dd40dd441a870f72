#include "api/SentLinks.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"

#include <optional>

namespace monitorservice {

namespace {

void parseLink(simdjson::dom::element value, const std::string& name, SentLinks& links)
{
    std::optional<std::string> type;
    std::optional<std::string> identifier;
    forEachMember(objectOf(value, name), name + ".",
                  [&](std::string_view member, simdjson::dom::element content) {
                      const std::string path = name + "." + std::string(member);
                      if (member == "type") {
                          type = nonEmptyTextOf(content, path);
                      } else if (member == "rId") {
                          identifier = nonEmptyTextOf(content, path);
                      } else {
                          throw ApiError(400, "\"" + path + "\" is not a member of a link");
                      }
                  });
    if (!type) {
        throw ApiError(400, "\"" + name + ".type\" is missing");
    }
    links.types.push_back(*type);
    if (identifier) {
        links.links.push_back({*type, *identifier});
    }
}

} // namespace

SentLinks parseLinks(simdjson::dom::element value, const std::string& name)
{
    SentLinks links;
    std::size_t index = 0;
    for (const simdjson::dom::element element : arrayOf(value, name)) {
        parseLink(element, name + "[" + std::to_string(index++) + "]", links);
    }
    return links;
}

} // namespace monitorservice
