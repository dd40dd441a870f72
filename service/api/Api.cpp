#include "api/Api.h"

#include "api/ApiError.h"
#include "api/Authentication.h"
#include "api/Metrics.h"
#include "api/OpenApi.h"
#include "api/Resources.h"
#include "domain/Document.h"
#include "json/JsonText.h"
#include "query/QueryError.h"
#include "time/LocalDays.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace monitorservice {

namespace {

HttpResponse withHeaders(HttpResponse response, const ApiError::Headers& headers)
{
    response.headers.insert(response.headers.end(), headers.begin(), headers.end());
    return response;
}

// One piece, so that lines of several threads do not mix.
void report(const std::exception& error)
{
    std::cerr << std::string("monitor-service: ") + error.what() + "\n" << std::flush;
}

HttpResponse answerFailure(const std::exception& error)
{
    report(error);
    return errorResponse(500, "the store has failed");
}

// What a client is told of a failure of the store; the operator reads the rest on the standard error.
HttpResponse answerStoreError(const StoreError& error)
{
    switch (error.failure()) {
    case StoreFailure::Busy:
        return errorResponse(503, "the store is busy; try again");
    case StoreFailure::Unreachable:
        report(error);
        return errorResponse(503, "the store cannot be reached at present; nothing was written");
    case StoreFailure::Unacknowledged:
        report(error);
        return errorResponse(503,
                             "the store has not confirmed what was written; it may be there or not, now or "
                             "later");
    case StoreFailure::Full:
        report(error);
        return errorResponse(503, "the store has no room left; nothing can be written until there is some");
    case StoreFailure::NotWritable:
        report(error);
        return errorResponse(503, "the store cannot be written at present");
    case StoreFailure::Conflict:
        return errorResponse(409, "this contradicts what is stored");
    default:
        return answerFailure(error);
    }
}

// The methods of one path may stand in several files.
void add(std::vector<Route>& routes, const Route& route)
{
    const auto same = std::find_if(routes.begin(), routes.end(),
                                   [&route](const Route& one) { return one.path == route.path; });
    if (same == routes.end()) {
        routes.push_back(route);
    } else {
        same->methods.insert(same->methods.end(), route.methods.begin(), route.methods.end());
    }
}

} // namespace

std::vector<Route> allRoutes()
{
    std::vector<Route> routes;
    for (auto&& some : {aboutRoutes(), alarmRoutes(), authRoutes(), cellRoutes(), categoryRoutes(),
                        changeRoutes(), dataManageDeletionRoutes(), dataManageRoutes(), deliveryRoutes(),
                        deliveryUndoRoutes(), groupRoutes(), pointLocationChangeRoutes(),
                        pointLocationDeletionRoutes(), pointLocationLinkRoutes(), pointLocationReadRoutes(),
                        projectRoutes(), statisticsRoutes(), subCategoryRoutes()}) {
        for (const Route& route : some) {
            add(routes, route);
        }
    }
    return routes;
}

Api::Api(Store& store, std::shared_ptr<const HttpCounters> counters)
    : m_store(store), m_counters(std::move(counters)), m_routes(allRoutes())
{
}

HttpResponse Api::answer(HttpRequest& request) const
{
    std::string caller;
    HttpResponse response = answerOrRefuse(request, caller);
    response.caller = std::move(caller);
    return response;
}

HttpResponse Api::answerOrRefuse(HttpRequest& request, std::string& caller) const
{
    try {
        if (request.path.size() > 1 && request.path.front() == "monitor-service") {
            return answerClient(request, caller);
        }
        return answerOperator(request);
    } catch (const AuthenticationError& error) {
        caller = error.token();
        return withHeaders(errorResponse(401, error.what()), {{"WWW-Authenticate", "Bearer"}});
    } catch (const ApiError& error) {
        return withHeaders(errorResponse(error.status(), error.what()), error.headers());
    } catch (const QueryError& error) {
        return errorResponse(static_cast<unsigned>(error.status()), error.what());
    } catch (const StoreError& error) {
        return answerStoreError(error);
    } catch (const DamagedDocument& error) {
        return answerFailure(error);
    } catch (const UnknownTimeZone& error) {
        return answerFailure(error);
    }
}

HttpResponse Api::answerClient(HttpRequest& request, std::string& caller) const
{
    Expectations expected;
    expected.secretHash = secretHashOf(request.authorization);
    std::unique_ptr<const Session> session = m_store.read(expected);
    Principal principal = authenticate(*session, expected.secretHash);
    caller = principal.token();
    RouteMatch match = findRoute(m_routes, request);
    ApiRequest apiRequest{request, std::move(match.ids), m_store, std::move(session), std::move(principal)};
    return match.handler(apiRequest);
}

// What needs no token: whether the service lives, whether it can answer, what it has done, what can be asked
// of it.
HttpResponse Api::answerOperator(const HttpRequest& request) const
{
    const std::string name = request.path.size() == 1 ? request.path.front() : std::string();
    if (name != "healthz" && name != "readyz" && name != "metrics" && name != "openapi.json") {
        throw ApiError(404, "there is no such resource");
    }
    if (request.method != "GET") {
        throw ApiError(405, request.method + " is not possible here, only GET", {{"Allow", "GET"}});
    }
    HttpResponse response;
    if (name == "metrics") {
        response.contentType = "text/plain; version=0.0.4; charset=utf-8";
        response.body = metricsText(*m_counters);
    } else if (name == "openapi.json") {
        response.body = openApiText();
    } else if (name == "readyz" && !isReady()) {
        response = errorResponse(503, "the store is not ready");
    } else {
        response.body = JsonObjectWriter().text("status", "ok").finish();
    }
    return response;
}

bool Api::isReady() const
{
    try {
        m_store.checkReady();
        return true;
    } catch (const StoreError& error) {
        report(error);
        return false;
    }
}

} // namespace monitorservice
