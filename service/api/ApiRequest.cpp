#include "api/ApiRequest.h"

#include "api/Authentication.h"

#include <utility>

namespace monitorservice {

Writing beginWriting(ApiRequest& request, const Claim& claim, Expectations expected)
{
    request.session.reset();
    expected.secretHash = secretHashOf(request.http.authorization);
    std::unique_ptr<Session> session = request.store.write(claim, expected);
    Principal principal = authenticate(*session, expected.secretHash);
    return {std::move(session), std::move(principal)};
}

} // namespace monitorservice
