#pragma once

#include <string>
#include <vector>

namespace monitorservice {

/// What is there after a change.
template <typename Thing>
struct Administered
{
    Thing thing;
    std::vector<std::string> warnings; ///< what is allowed of it and easily mistaken, a sentence each
};

} // namespace monitorservice
