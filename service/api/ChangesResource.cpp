#include "api/Listing.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/changes: the audit trail, newest first; identifiers rise with time whatever the
// clock does. What is about the project as a whole has no category, so it is given to who may read every
// category.
HttpResponse listChanges(ApiRequest& request)
{
    ListKind list;
    list.order = "-_id";
    return answerListing(request, request.ids[0], request.session->documents(DocumentKind::Change), list);
}

} // namespace

std::vector<Route> changeRoutes()
{
    return {{{"projects", "*", "changes"}, {{"GET", listChanges}}}};
}

} // namespace monitorservice
