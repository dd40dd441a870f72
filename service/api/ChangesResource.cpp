#include "api/Administering.h"
#include "api/Listing.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// Newest first; identifiers rise with time.
HttpResponse answerChanges(const ApiRequest& request, const ListReach& reach)
{
    ListKind list;
    list.order = "-_id";
    return answerListing(request, reach, request.session->documents(DocumentKind::Change), list);
}

// GET projects/{project}/changes: the audit trail of a project. What is about the project as a whole has no
// category, so it is given to who may read every category.
HttpResponse listChanges(ApiRequest& request)
{
    return answerChanges(request, readableIn(request, request.ids[0]));
}

// GET changes: the audit trail of the whole service, with what is of no project and of those that are gone.
HttpResponse listAllChanges(ApiRequest& request)
{
    requireAdministrator(request.principal);
    ListReach all;
    all.everyProject = true;
    return answerChanges(request, all);
}

} // namespace

std::vector<Route> changeRoutes()
{
    return {{{"changes"}, {{"GET", listAllChanges}}}, {{"projects", "*", "changes"}, {{"GET", listChanges}}}};
}

} // namespace monitorservice
