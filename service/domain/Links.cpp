#include "domain/Links.h"

#include "domain/DocumentReader.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toJson(const std::vector<Link>& links)
{
    JsonArrayWriter array;
    for (const Link& link : links) {
        array.json(JsonObjectWriter().text("type", link.type).text("rId", link.identifier).finish());
    }
    return array.finish();
}

std::vector<Link> linksIn(const DocumentReader& document)
{
    std::vector<Link> links;
    for (const simdjson::dom::element element : document.array("links")) {
        std::string_view type;
        std::string_view identifier;
        if (element["type"].get(type) != simdjson::SUCCESS ||
            element["rId"].get(identifier) != simdjson::SUCCESS) {
            document.refuse("\"links\" holds something that is not a link");
        }
        links.push_back({std::string(type), std::string(identifier)});
    }
    return links;
}

} // namespace monitorservice
