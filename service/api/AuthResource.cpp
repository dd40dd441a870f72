#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "json/JsonText.h"

#include <map>

namespace monitorservice {

namespace {

// GET projects/{project}/auth?category&key: {"value": "true"} or {"value": "false"}, texts. What is not known
// is not allowed, be it a project or a category.
HttpResponse getAuth(ApiRequest& request)
{
    static const std::map<std::string, Right, std::less<>> rights{
        {"create", Right::Create}, {"delete", Right::Delete}, {"edit", Right::Edit}};
    const Parameters parameters(request.http, {"category", "key"});
    const std::string& category = parameters.requiredText("category");
    const std::string& key = parameters.requiredText("key");
    const auto right = rights.find(key);
    if (right == rights.end()) {
        throw ApiError(400, "parameter \"key\" must be create, delete or edit, not \"" + key + "\"");
    }
    const bool allowed = request.principal.may(right->second, request.ids[0], category) &&
                         request.session->categories().contains(category);
    HttpResponse response;
    response.body = JsonObjectWriter().text("value", allowed ? "true" : "false").finish();
    return response;
}

} // namespace

std::vector<Route> authRoutes()
{
    return {{{"projects", "*", "auth"}, {{"GET", getAuth}}}};
}

} // namespace monitorservice
