#pragma once

#include "store/postgres/PostgresConnection.h"
#include "store/sql/Lanes.h"

#include <vector>

namespace monitorservice {

/// Posts what waits until the transaction has these lanes to itself among all that ask likewise, and keeps
/// them until it ends. Those who wait for one lane get it in the order of asking.
void lockLanes(PostgresConnection& connection, const std::vector<Lane>& lanes);

} // namespace monitorservice
