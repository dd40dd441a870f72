#pragma once

#include "store/sql/Lanes.h"

#include <string>
#include <vector>

namespace monitorservice {

/// Statements, each with its semicolon, that wait until the transaction has these lanes to itself among all
/// that ask likewise, and keep them until it ends. Those who wait for one lane get it in the order of asking.
std::string lockLanes(const std::vector<Lane>& lanes);

} // namespace monitorservice
