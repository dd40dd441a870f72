#pragma once

#include "access/Principal.h"
#include "http/HttpMessage.h"
#include "store/Store.h"

#include <memory>
#include <string>
#include <vector>

namespace monitorservice {

/// A request whose bearer is known and whose resource has been found.
struct ApiRequest
{
    HttpRequest& http;            ///< its body may be taken by the resource that reads it
    std::vector<std::string> ids; ///< the path's segments that stand for identifiers, in order
    Store& store;
    std::unique_ptr<const Session> session; ///< what is read is of the moment at which the token was checked
    Principal principal;
};

/// A request that writes, from its turn to write on.
struct Writing
{
    std::unique_ptr<Session> session;
    Principal principal;
};

/// Ends the reading session and waits for the turn to write what is claimed; what is expected is what the
/// request will look up then. The token and its grants are read once more: what was revoked during the wait
/// is refused.
Writing beginWriting(ApiRequest& request, const Claim& claim = {}, Expectations expected = {});

} // namespace monitorservice
