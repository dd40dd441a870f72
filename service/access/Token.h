#pragma once

#include "time/Instant.h"

#include <optional>
#include <string>

namespace monitorservice {

/// What a client shows to be let in. The secret itself is kept nowhere, only its SHA-256.
struct Token
{
    std::string id;
    std::string owner; ///< written into what the token's bearer creates and changes
    std::string name;  ///< what the token is for; may be empty
    Instant createdAt = 0;
    std::optional<Instant> expiresAt; ///< first instant at which it is refused; nothing: never
    std::optional<Instant> revokedAt;
};

} // namespace monitorservice
