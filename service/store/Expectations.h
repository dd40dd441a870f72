#pragma once

#include "domain/DocumentKind.h"

#include <string>
#include <utility>
#include <vector>

namespace monitorservice {

/// What a session is likely to look up first. A store whose data are far away asks for all of it while it
/// begins the session; no answer depends on it.
struct Expectations
{
    std::string secretHash;                                      ///< of the bearer's token; empty: nobody's
    std::vector<std::pair<DocumentKind, std::string>> documents; ///< by their identifiers
    std::vector<std::string> projects;
};

} // namespace monitorservice
