#pragma once

#include "access/Grant.h"
#include "access/Token.h"

#include <vector>

namespace monitorservice {

/// A token and all that is granted to it.
struct Bearer
{
    Token token;
    std::vector<Grant> grants;
};

} // namespace monitorservice
