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

/// The same of a member that may be missing: what was not sent does not take it away.
template <typename Member>
bool assign(std::optional<Member>& member, const std::optional<Member>& sent)
{
    if (!sent || sent == member) {
        return false;
    }
    member = sent;
    return true;
}

} // namespace monitorservice
