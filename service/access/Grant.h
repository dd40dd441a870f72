#pragma once

#include "access/Rights.h"
#include "time/Instant.h"

#include <optional>
#include <string>

namespace monitorservice {

/// Rights of one token, in one project or in the service as a whole.
struct Grant
{
    std::string id;
    std::string token;
    std::optional<std::string> project;  ///< nothing: the whole service
    std::optional<std::string> category; ///< nothing: every category, those added later too
    Rights rights;
    Instant createdAt = 0;
};

} // namespace monitorservice
