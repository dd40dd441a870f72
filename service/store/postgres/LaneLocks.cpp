#include "store/postgres/LaneLocks.h"

namespace monitorservice {

namespace {

// Nothing but this number keeps a lane's lock out of the way of other locks of numbers: the letters "RKML".
constexpr const char* lockedLanes = "1380666700";

std::string lockStatement(const char* how, Lane lane)
{
    return std::string("SELECT ") + how + "(" + lockedLanes + ", " + std::to_string(lane) + "); ";
}

} // namespace

// Who has one lane shares the lock of all of them, so that who wants all has one lock to wait for. Everybody
// asks in the same order, and so nobody waits in a circle.
std::string lockLanes(const std::vector<Lane>& lanes)
{
    if (lanes.front() == allLanes) {
        return lockStatement("pg_advisory_xact_lock", allLanes);
    }
    std::string statements = lockStatement("pg_advisory_xact_lock_shared", allLanes);
    for (const Lane lane : lanes) {
        statements += lockStatement("pg_advisory_xact_lock", lane);
    }
    return statements;
}

} // namespace monitorservice
