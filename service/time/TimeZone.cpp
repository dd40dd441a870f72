#include "time/TimeZone.h"

#include <date/tz.h>

#include <stdexcept>

namespace monitorservice {

bool isTimeZone(const std::string& name)
{
    try {
        date::locate_zone(name);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace monitorservice
