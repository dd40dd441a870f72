#include "query/PathReach.h"

#include <algorithm>

namespace monitorservice {

std::optional<std::size_t> listPosition(const std::string& name)
{
    constexpr std::size_t longest = 9;
    const bool isNumber = !name.empty() && name.size() <= longest &&
                          std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber || (name.size() > 1 && name.front() == '0')) {
        return std::nullopt;
    }
    return std::stoul(name);
}

} // namespace monitorservice
