#pragma once

#include "store/Instant.h"
#include "store/Rights.h"

#include <cstdint>
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

/// One reading of a point; the point, the time and the count identify it.
struct Sample
{
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes; ///< of the time as it was written; nothing: it ended in "Z"
    double value = 0;
    std::string timeFlag;
};

/// The last sample of a day, and how many the day has.
struct DaySummary
{
    std::int64_t day = 0; ///< days since 1970-01-01 in the project's time zone
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes;
    double value = 0;
    std::int64_t samples = 0;
};

/// A point location as the samples know it.
struct StoredPoint
{
    std::int64_t key = 0; ///< what its samples are found by; never leaves the service
    std::string id;
    std::string document; ///< one JSON object, without the samples
};

} // namespace monitorservice
