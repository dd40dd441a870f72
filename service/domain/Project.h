#pragma once

#include "time/Instant.h"

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

/// The document under which it is answered.
std::string toDocument(const Project& project);

} // namespace monitorservice
