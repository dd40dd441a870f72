#pragma once

#include "access/Principal.h"
#include "store/Store.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace monitorservice {

/// Nobody can be let in on what was shown. The message is for the client.
class AuthenticationError : public std::runtime_error
{
public:
    explicit AuthenticationError(const std::string& message, std::string token = {})
        : std::runtime_error(message), m_token(std::move(token))
    {
    }

    /// The identifier of the token that was shown; empty when it is not known.
    const std::string& token() const noexcept { return m_token; }

private:
    std::string m_token;
};

/// The SHA-256 of the token in an Authorization field (RFC 6750, section 2.1). Throws AuthenticationError.
std::string secretHashOf(const std::optional<std::string>& authorization);

/// The bearer of the token with this hash, as the session sees the token and its grants: what was revoked
/// before the session began holds no longer. Throws AuthenticationError.
Principal authenticate(const Session& session, const std::string& secretHash);

} // namespace monitorservice
