#pragma once

#include "access/Principal.h"
#include "store/Store.h"

#include <optional>
#include <stdexcept>
#include <string>

namespace monitorservice {

/// Nobody can be let in on what was shown. The message is for the client.
class AuthenticationError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The bearer of the token in an Authorization field (RFC 6750, section 2.1), as the session sees the token
/// and its grants: what was revoked before the session began holds no longer. Throws AuthenticationError.
Principal authenticate(const Session& session, const std::optional<std::string>& authorization);

} // namespace monitorservice
