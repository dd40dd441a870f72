#pragma once

#include <optional>
#include <string_view>

namespace monitorservice {

/// Which variations a limit is for.
enum class LimitSide
{
    Both,
    Rising, ///< only those above 0
    Falling ///< only those below 0
};

/// As documents name it: "both", "rising", "falling".
std::string_view toText(LimitSide side);

/// The reverse; nothing when no side has the name.
std::optional<LimitSide> limitSideOf(std::string_view text);

} // namespace monitorservice
