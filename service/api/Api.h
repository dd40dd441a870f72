#pragma once

#include "api/Router.h"
#include "http/HttpServer.h"
#include "store/Store.h"

#include <memory>
#include <string>
#include <vector>

namespace monitorservice {

/// Answers every request of the service: who asks, for which resource, and each error in its JSON form. Safe
/// to call from several threads at once.
class Api
{
public:
    /// The store must outlive the object.
    Api(Store& store, std::shared_ptr<const HttpCounters> counters);

    /// Leaves the request without a body when that was a delivery. The answer's caller is the identifier of
    /// the token that was shown.
    HttpResponse answer(HttpRequest& request) const;

private:
    HttpResponse answerOperator(const HttpRequest& request) const;
    HttpResponse answerOrRefuse(HttpRequest& request, std::string& caller) const;
    HttpResponse answerClient(HttpRequest& request, std::string& caller) const;
    bool isReady() const;

    Store& m_store;
    std::shared_ptr<const HttpCounters> m_counters;
    std::vector<Route> m_routes;
};

} // namespace monitorservice
