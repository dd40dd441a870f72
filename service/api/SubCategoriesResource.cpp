#include "api/Answers.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/subCategories: see answerListing().
HttpResponse listSubCategories(ApiRequest& request)
{
    return answerListing(request, request.ids[0], request.session->documents(DocumentKind::SubCategory));
}

// GET subCategories/{id}
HttpResponse getSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return answerJson(readable(request.session->documents(DocumentKind::SubCategory), request.principal,
                               "sub-category", request.ids[0])
                          .text);
}

} // namespace

std::vector<Route> subCategoryRoutes()
{
    return {{{"projects", "*", "subCategories"}, {{"GET", listSubCategories}}},
            {{"subCategories", "*"}, {{"GET", getSubCategory}}}};
}

} // namespace monitorservice
