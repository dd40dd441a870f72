#pragma once

#include <simdjson.h>

#include <string>
#include <vector>

namespace monitorservice {

/// A relation of a monitoring or a point location to something outside the service.
struct Link
{
    std::string type;       ///< the relation, such as "model"
    std::string identifier; ///< member "rId"

    friend bool operator==(const Link& left, const Link& right)
    {
        return left.type == right.type && left.identifier == right.identifier;
    }
};

/// What a client sends of links: the types that are named, and the links of these types. A type may be named
/// without a link: there shall be none of it.
struct SentLinks
{
    std::vector<std::string> types;
    std::vector<Link> links;
};

/// Reads an array of links. Throws ApiError 400 that names the member; `name` is that of the array.
SentLinks parseLinks(simdjson::dom::element value, const std::string& name);

/// The links as they are stored and answered, a JSON array.
std::string toJson(const std::vector<Link>& links);

} // namespace monitorservice
