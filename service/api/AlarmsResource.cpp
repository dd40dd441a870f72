#include "api/Listing.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/alarmManages: the alarms, or with "open" those that are open, newest first;
// identifiers rise with time.
HttpResponse listAlarms(ApiRequest& request)
{
    const std::string& project = request.ids[0];
    ListParameters parameters(request, readableIn(request, project), {"open"});
    if (parameters.given.flag("open")) {
        parameters.query.identifiers = request.session->excesses().openAlarms(project);
    }
    ListKind list;
    list.order = "-_id";
    return answerListing(parameters, request.session->documents(DocumentKind::Alarm), list);
}

// GET alarmManages/{id}/alarmDetails: the points that an alarm is about, by name.
HttpResponse listDetails(ApiRequest& request)
{
    return answerListingOf(request, {request.session->documents(DocumentKind::Alarm), "alarm"},
                           request.session->documents(DocumentKind::AlarmDetail), "pointName");
}

// GET alarmDetails/{id}/threeDetails: the values of a point at its depths, downwards.
HttpResponse listDepths(ApiRequest& request)
{
    return answerListingOf(request, {request.session->documents(DocumentKind::AlarmDetail), "alarm detail"},
                           request.session->documents(DocumentKind::AlarmDepth), "depth");
}

} // namespace

std::vector<Route> alarmRoutes()
{
    return {{{"projects", "*", "alarmManages"}, {{"GET", listAlarms}}},
            {{"alarmManages", "*", "alarmDetails"}, {{"GET", listDetails}}},
            {{"alarmDetails", "*", "threeDetails"}, {{"GET", listDepths}}}};
}

} // namespace monitorservice
