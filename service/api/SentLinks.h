#pragma once

#include "domain/Links.h"

#include <simdjson.h>

#include <string>
#include <vector>

namespace monitorservice {

/// What a client sends of links: the types that are named, and the links of these types. A type may be named
/// without a link: there shall be none of it.
struct SentLinks
{
    std::vector<std::string> types;
    std::vector<Link> links;
};

/// Reads an array of links. Throws ApiError 400 that names the member; `name` is that of the array.
SentLinks parseLinks(simdjson::dom::element value, const std::string& name);

} // namespace monitorservice
