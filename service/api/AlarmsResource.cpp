#include "api/Listing.h"
#include "api/Permission.h"
#include "api/Resources.h"

namespace monitorservice {

namespace {

// GET projects/{project}/alarmManages: the alarms, newest first; identifiers rise with time whatever the clock does.
HttpResponse listAlarms(ApiRequest& request)
{
    ListKind list;
    list.order = "-_id";
    return answerListing(request, request.ids[0], request.session->alarms(), list);
}

// GET alarmManages/{id}/alarmDetails: the points that an alarm is about, by name.
HttpResponse listDetails(ApiRequest& request)
{
    const StoredDocument alarm =
        readable(request.session->alarms(), request.principal, "alarm", request.ids[0]);
    ListKind list;
    list.parent = alarm.id;
    list.order = "pointName";
    return answerListing(request, alarm.project, request.session->alarmDetails(), list);
}

// GET alarmDetails/{id}/threeDetails: the values of a point at its depths, downwards.
HttpResponse listDepths(ApiRequest& request)
{
    const StoredDocument detail =
        readable(request.session->alarmDetails(), request.principal, "alarm detail", request.ids[0]);
    ListKind list;
    list.parent = detail.id;
    list.order = "depth";
    return answerListing(request, detail.project, request.session->alarmDepths(), list);
}

} // namespace

std::vector<Route> alarmRoutes()
{
    return {{{"projects", "*", "alarmManages"}, {{"GET", listAlarms}}},
            {{"alarmManages", "*", "alarmDetails"}, {{"GET", listDetails}}},
            {{"alarmDetails", "*", "threeDetails"}, {{"GET", listDepths}}}};
}

} // namespace monitorservice
