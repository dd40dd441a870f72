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

std::vector<std::string> timeZoneNames()
{
    std::vector<std::string> names;
    for (const date::time_zone& zone : date::get_tzdb().zones) {
        names.push_back(zone.name());
    }
    return names;
}

} // namespace monitorservice
