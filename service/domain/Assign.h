#pragma once

#include <optional>

namespace monitorservice {

/// Gives a member the value that was sent for it; what was not sent leaves it. Gives whether it changed.
template <typename Member>
bool assign(Member& member, const std::optional<Member>& sent)
{
    if (!sent || *sent == member) {
        return false;
    }
    member = *sent;
    return true;
}

} // namespace monitorservice
