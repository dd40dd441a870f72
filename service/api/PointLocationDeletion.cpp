#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "api/TargetClaim.h"
#include "api/WithdrawalText.h"
#include "delivery/PointDeletion.h"

#include <algorithm>
#include <array>

namespace monitorservice {

namespace {

StoredDocument deletable(const Session& session, const Principal& principal, const std::string& id)
{
    StoredDocument stored =
        readable(session.documents(DocumentKind::PointLocation), principal, "point location", id);
    requireRight(principal, Right::Delete, "point locations", stored.project, stored.category);
    return stored;
}

// DELETE pointLocations/{id}: the point with all its samples; answers it with what became of them.
HttpResponse deletePointLocation(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const Claim claim = claimOfPoint(*request.session, request.ids[0]);
    const auto [session, principal] = beginWriting(request, claim);
    const StoredDocument stored = deletable(*session, principal, request.ids[0]);
    const Withdrawal withdrawal =
        deletePoint(*session, fromDocument<PointLocation>(stored.text), principal.owner());
    session->commit();
    return answerJson(withWithdrawal(stored.text, withdrawal));
}

// A member that samples do not have would be unequal to everything: a slip of the pen would take all of them.
void requireMembersOfSamples(const Where& where)
{
    constexpr std::array<std::string_view, 4> members{"count", "time", "value", "timeFlag"};
    for (const Condition& condition : where.conditions()) {
        if (std::find(members.begin(), members.end(), condition.path) == members.end()) {
            throw ApiError(400, "parameter \"where\": a sample has no \"" + condition.path +
                                    "\", but count, time, value and timeFlag");
        }
    }
}

// DELETE pointLocations/{id}/samples?where: single readings of a point; answers what became of them with its
// identifier.
HttpResponse deleteReadings(ApiRequest& request)
{
    const Parameters parameters(request.http, {"where"});
    const Where where = requiredCondition(parameters, "every sample of the point would be deleted");
    requireMembersOfSamples(where);
    const Claim claim = claimOfPoint(*request.session, request.ids[0]);
    const auto [session, principal] = beginWriting(request, claim);
    const StoredDocument stored = deletable(*session, principal, request.ids[0]);
    const Withdrawal withdrawal =
        deleteSamples(*session, fromDocument<PointLocation>(stored.text), where, principal.owner());
    if (withdrawal.removed > 0) {
        session->commit();
    }
    return answerJson(withWithdrawal(JsonObjectWriter().text("_id", stored.id).finish(), withdrawal));
}

} // namespace

std::vector<Route> pointLocationDeletionRoutes()
{
    return {{{"pointLocations", "*"}, {{"DELETE", deletePointLocation}}},
            {{"pointLocations", "*", "samples"}, {{"DELETE", deleteReadings}}}};
}

} // namespace monitorservice
