#include "domain/LimitSide.h"

namespace monitorservice {

std::string_view toText(LimitSide side)
{
    switch (side) {
    case LimitSide::Rising:
        return "rising";
    case LimitSide::Falling:
        return "falling";
    case LimitSide::Both:
        break;
    }
    return "both";
}

std::optional<LimitSide> limitSideOf(std::string_view text)
{
    for (const LimitSide side : {LimitSide::Both, LimitSide::Rising, LimitSide::Falling}) {
        if (toText(side) == text) {
            return side;
        }
    }
    return std::nullopt;
}

} // namespace monitorservice
