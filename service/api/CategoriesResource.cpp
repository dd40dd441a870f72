#include "api/Parameters.h"
#include "api/Resources.h"
#include "json/JsonText.h"

namespace monitorservice {

namespace {

// GET categories: an array of texts, the same for every caller.
HttpResponse getCategories(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    JsonArrayWriter array;
    for (const std::string& category : request.session->categories().list()) {
        array.text(category);
    }
    HttpResponse response;
    response.body = array.finish();
    return response;
}

} // namespace

std::vector<Route> categoryRoutes()
{
    return {{{"categories"}, {{"GET", getCategories}}}};
}

} // namespace monitorservice
