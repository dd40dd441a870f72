#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/PointText.h"
#include "api/Resources.h"

#include <optional>
#include <string>

namespace monitorservice {

namespace {

// What the parameters "samples" and "rollup" ask for in place of all samples; nothing: all of them.
std::optional<PointDigest> digestIn(const Parameters& parameters)
{
    const std::string* const samples = parameters.text("samples");
    const bool extremes = parameters.flag("rollup");
    if (samples != nullptr && (*samples == "none" || *samples == "latest")) {
        return PointDigest{*samples == "latest", extremes};
    }
    if (samples != nullptr && *samples != "all") {
        throw ApiError(400, "parameter \"samples\" must be all, none or latest");
    }
    if (extremes) {
        throw ApiError(400, "parameter \"rollup\" needs samples=none or samples=latest");
    }
    return std::nullopt;
}

// GET projects/{project}/pointLocations: the points with their samples, as PointSelection chooses them, or
// with what these come to. `expand` is accepted; relations are always there.
HttpResponse listPoints(ApiRequest& request)
{
    const ListParameters parameters(request, readableIn(request, request.ids[0]), {"samples", "rollup"});
    const std::optional<PointDigest> digest = digestIn(parameters.given);
    const auto selection = request.session->measurements().select(parameters.query);
    if (parameters.onlyCount) {
        return answerCount(selection->count());
    }
    return answerJson((digest ? digestTexts(*selection, *digest, "[") : pointTexts(*selection, "[")) + "]");
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
