#include "store/postgres/LaneLocks.h"

namespace monitorservice {

namespace {

// Nothing but this number keeps a lane's lock out of the way of other locks of numbers: the letters "RKML".
constexpr int lockedLanes = 1380666700;

} // namespace

// Who has one lane shares the lock of all of them, so that who wants all has one lock to wait for. Everybody
// asks in the same order, and so nobody waits in a circle.
void lockLanes(PostgresConnection& connection, const std::vector<Lane>& lanes)
{
    if (lanes.front() != allLanes) {
        connection.post("SELECT pg_advisory_xact_lock_shared($1::integer, $2::integer)", lockedLanes,
                        std::int64_t{allLanes});
    }
    for (const Lane lane : lanes) {
        connection.post("SELECT pg_advisory_xact_lock($1::integer, $2::integer)", lockedLanes,
                        std::int64_t{lane});
    }
}

} // namespace monitorservice
