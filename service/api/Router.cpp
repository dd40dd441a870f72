#include "api/Router.h"

#include "api/ApiError.h"

#include <algorithm>

namespace monitorservice {

namespace {

bool hasPath(const Route& route, const std::vector<std::string>& path)
{
    return std::equal(route.path.begin(), route.path.end(), path.begin() + 1, path.end(),
                      [](std::string_view pattern, const std::string& segment) {
                          return pattern == "*" ? !segment.empty() : pattern == segment;
                      });
}

std::vector<std::string> idsIn(const Route& route, const std::vector<std::string>& path)
{
    std::vector<std::string> ids;
    for (std::size_t i = 0; i < route.path.size(); ++i) {
        if (route.path[i] == "*") {
            ids.push_back(path[i + 1]);
        }
    }
    return ids;
}

std::string allowed(const Route& route)
{
    std::string methods;
    for (const auto& [method, handler] : route.methods) {
        methods += methods.empty() ? "" : ", ";
        methods += method;
    }
    return methods;
}

} // namespace

RouteMatch findRoute(const std::vector<Route>& routes, const HttpRequest& request)
{
    const auto route = std::find_if(routes.begin(), routes.end(),
                                    [&](const Route& candidate) { return hasPath(candidate, request.path); });
    if (route == routes.end()) {
        throw ApiError(404, "there is no such resource");
    }
    const auto method =
        std::find_if(route->methods.begin(), route->methods.end(),
                     [&](const auto& candidate) { return candidate.first == request.method; });
    if (method == route->methods.end()) {
        const std::string methods = allowed(*route);
        throw ApiError(405, request.method + " is not possible here, only " + methods, {{"Allow", methods}});
    }
    return {method->second, idsIn(*route, request.path)};
}

} // namespace monitorservice
