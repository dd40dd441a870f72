#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "delivery/DeliveryIntake.h"
#include "delivery/DeliveryParser.h"
#include "delivery/DeliveryRefusal.h"

#include <utility>

namespace monitorservice {

namespace {

// A client that sends an array of arrays shows the message of a 500 only.
constexpr unsigned nestedRefusal = 500;

unsigned statusOf(const DeliveryRefusal& refusal)
{
    return refusal.reason() == DeliveryRefusal::Reason::Forbidden ? 403 : 400;
}

std::string takeIn(ApiRequest& request)
{
    const Delivery delivery = parseDelivery(request.http.body);
    std::string().swap(request.http.body); // up to 64 MiB that nobody needs during the wait and the writing
    const auto [session, principal] = beginWriting(request, claimOf(delivery), expectationsOf(delivery));
    const Principal& sender = principal;
    const MayDo mayDo = [&sender](Right right, const std::string& project, const std::string& category) {
        return sender.may(right, project, category);
    };
    IntakeResult result = takeIn(*session, delivery, mayDo, sender.owner());
    if (result.changed) {
        session->commit();
    }
    return std::move(result.points);
}

// POST pointLocations: takes in an array of points with their samples, or an array of such arrays, and
// answers what names each point and what is counted of it. All or nothing.
HttpResponse postDelivery(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const bool isNested = isNestedDelivery(request.http.body);
    try {
        HttpResponse response;
        response.body = takeIn(request);
        return response;
    } catch (const DeliveryRefusal& refusal) {
        throw ApiError(isNested ? nestedRefusal : statusOf(refusal), refusal.what());
    }
}

} // namespace

std::vector<Route> deliveryRoutes()
{
    return {{{"pointLocations"}, {{"POST", postDelivery}}}};
}

} // namespace monitorservice
