#pragma once

#include "administration/AdministrationError.h"
#include "api/ApiError.h"
#include "api/ApiRequest.h"

#include <string>

namespace monitorservice {

/// Throws ApiError 403 unless the caller may administer the service.
void requireAdministrator(const Principal& principal);

/// How a refusal is answered. A category is sent as its "name".
ApiError answerTo(const AdministrationError& refusal);

/// Answers a request that administers: gives the action the session to write in and the name of who asks, and
/// commits. Throws ApiError 403 when the caller may not, and what answerTo() makes of a refusal.
template <typename Action>
HttpResponse administer(ApiRequest& request, Action&& action)
{
    const auto [session, principal] = beginWriting(request);
    requireAdministrator(principal);
    try {
        HttpResponse response = action(*session, principal.owner());
        session->commit();
        return response;
    } catch (const AdministrationError& refusal) {
        throw answerTo(refusal);
    }
}

} // namespace monitorservice
