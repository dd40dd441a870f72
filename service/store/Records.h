#pragma once

#include "store/Instant.h"
#include "store/Rights.h"

#include <optional>
#include <string>

namespace monitorservice {

/// A site with its monitorings; its days begin and end in its time zone.
struct Project
{
    std::string id;
    std::string name;
    std::string timeZone; ///< a name of the IANA time zone database, such as Europe/Vienna
    Instant createdAt = 0;
};

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

/// Rights of one token in one project.
struct Grant
{
    std::string id;
    std::string token;
    std::string project;
    std::optional<std::string> category; ///< nothing: every category, those added later too
    Rights rights;
    Instant createdAt = 0;
};

/// A document as the service answers it, and what access to it is decided by.
struct StoredDocument
{
    std::string id;
    std::string project;
    std::string category;
    std::string text; ///< one JSON object
};

} // namespace monitorservice
