#include "domain/Depth.h"

#include <algorithm>

namespace monitorservice {

namespace {

bool areDigits(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char one) { return one >= '0' && one <= '9'; });
}

} // namespace

std::string settledDepth(std::string_view depth)
{
    std::string_view whole = depth;
    const bool isNegative = !whole.empty() && whole.front() == '-';
    if (isNegative || (!whole.empty() && whole.front() == '+')) {
        whole.remove_prefix(1);
    }
    std::string_view fraction;
    if (const std::size_t point = whole.find('.'); point != std::string_view::npos) {
        fraction = whole.substr(point + 1);
        whole = whole.substr(0, point);
    }
    if ((whole.empty() && fraction.empty()) || !areDigits(whole) || !areDigits(fraction)) {
        return std::string(depth);
    }
    whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
    fraction = fraction.substr(0, fraction.find_last_not_of('0') + 1);
    const bool isZero = whole.empty() && fraction.empty();
    std::string settled = isNegative && !isZero ? "-" : "";
    settled += whole.empty() ? "0" : whole;
    if (!fraction.empty()) {
        settled += '.';
        settled += fraction;
    }
    return settled;
}

} // namespace monitorservice
