#include "api/ApiRequest.h"

#include "api/Authentication.h"

#include <utility>

namespace monitorservice {

Writing beginWriting(ApiRequest& request, const Claim& claim)
{
    request.session.reset();
    std::unique_ptr<Session> session = request.store.write(claim);
    Principal principal = authenticate(*session, request.http.authorization);
    return {std::move(session), std::move(principal)};
}

} // namespace monitorservice
