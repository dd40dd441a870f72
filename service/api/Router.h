#pragma once

#include "api/ApiRequest.h"
#include "http/HttpMessage.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace monitorservice {

using ResourceHandler = HttpResponse (*)(ApiRequest&);

/// One resource: its path below the service's, "*" where an identifier stands, and what answers each method.
struct Route
{
    std::vector<std::string_view> path;
    std::vector<std::pair<std::string_view, ResourceHandler>> methods;
};

struct RouteMatch
{
    ResourceHandler handler;
    std::vector<std::string> ids;
};

/// The handler for the method and the path's segments from the second on. Throws ApiError 404 when no route
/// has the path, and 405 with Allow when the one that has it does not know the method.
RouteMatch findRoute(const std::vector<Route>& routes, const HttpRequest& request);

} // namespace monitorservice
