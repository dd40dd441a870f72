#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "api/TargetClaim.h"
#include "delivery/PointChange.h"

namespace monitorservice {

namespace {

PointChange parsePointChange(std::string_view json)
{
    const JsonBody text(json);
    PointChange change;
    forEachMember(text.object(), "", [&change](std::string_view name, simdjson::dom::element value) {
        if (name == "initialValue") {
            change.initialValue =
                value.is_null() ? std::optional<double>() : std::optional(numberOf(value, "initialValue"));
        } else if (name == "alias") {
            change.alias = textOf(value, "alias");
        } else if (name == "dataType") {
            change.dataType = integerOf(value, "dataType");
        } else if (name == "offsetDirection") {
            change.offsetDirection = textOf(value, "offsetDirection");
        } else {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
    });
    return change;
}

// PATCH pointLocations/{id}: changes the members that are sent and answers the point without its samples.
HttpResponse changePointLocation(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const PointChange change = parsePointChange(request.http.body);

    const Claim claim = claimOfPoint(*request.session, request.ids[0]);
    const auto [session, principal] = beginWriting(request, claim);
    StoredDocument stored = readable(session->documents(DocumentKind::PointLocation), principal,
                                     "point location", request.ids[0]);
    requireRight(principal, Right::Edit, "point locations", stored.project, stored.category);
    std::string document = toDocument(
        changePoint(*session, fromDocument<PointLocation>(stored.text), change, principal.owner()));
    if (document != stored.text) {
        session->commit();
    }
    return answerJson(std::move(document));
}

} // namespace

std::vector<Route> pointLocationChangeRoutes()
{
    return {{{"pointLocations", "*"}, {{"PATCH", changePointLocation}}}};
}

} // namespace monitorservice
