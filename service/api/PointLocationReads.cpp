#include "api/Answers.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/PointText.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/pointLocations: the points with their samples, as PointSelection chooses them.
// `expand` is accepted; relations are always there.
HttpResponse listPoints(ApiRequest& request)
{
    const ListParameters parameters(request, request.ids[0]);
    const auto selection = request.session->measurements().select(parameters.query);
    if (parameters.onlyCount) {
        return answerCount(selection->count());
    }
    return answerJson(pointTexts(*selection, "[") + "]");
}

// GET pointLocations/{id}: the point with all its samples.
HttpResponse getPoint(ApiRequest& request)
{
    const Parameters parameters(request.http, {"expand"});
    parameters.flag("expand"); // read for its check alone: relations are always there
    const StoredDocument stored = readable(request.session->documents(DocumentKind::PointLocation),
                                           request.principal, "point location", request.ids[0]);
    const Where where = Where::equals("_id", stored.id);
    DocumentQuery query;
    query.project = stored.project;
    query.where = &where;
    query.limit = 1;
    const auto selection = request.session->measurements().select(query);
    return answerJson(pointTexts(*selection));
}

} // namespace

std::vector<Route> pointLocationReadRoutes()
{
    return {{{"projects", "*", "pointLocations"}, {{"GET", listPoints}}},
            {{"pointLocations", "*"}, {{"GET", getPoint}}}};
}

} // namespace monitorservice
