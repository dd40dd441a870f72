#include "api/ApiError.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/subCategories: see answerListing().
HttpResponse listSubCategories(ApiRequest& request)
{
    return answerListing(request, request.ids[0], request.session->subCategories());
}

// GET subCategories/{id}
HttpResponse getSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const std::string& id = request.ids[0];
    const std::optional<StoredDocument> document = request.session->subCategories().find(id);
    if (!document || !request.principal.may(Right::Read, document->project, document->category)) {
        throw notFound("sub-category", id);
    }
    HttpResponse response;
    response.body = document->text;
    return response;
}

} // namespace

std::vector<Route> subCategoryRoutes()
{
    return {{{"projects", "*", "subCategories"}, {{"GET", listSubCategories}}},
            {{"subCategories", "*"}, {{"GET", getSubCategory}}}};
}

} // namespace monitorservice
