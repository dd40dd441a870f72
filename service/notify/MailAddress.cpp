#include "notify/MailAddress.h"

#include <algorithm>

namespace monitorservice {

namespace {

// RFC 5321, section 4.5.3.1.3, without the angle brackets.
constexpr std::size_t longestAddress = 254;

bool isUnambiguous(char character)
{
    constexpr std::string_view special = "()<>[]:;,\\\"";
    return character > ' ' && character < '\x7f' && special.find(character) == std::string_view::npos;
}

} // namespace

bool isMailAddress(std::string_view text)
{
    const std::size_t at = text.find('@');
    return at != std::string_view::npos && at > 0 && at + 1 < text.size() && text.rfind('@') == at &&
           text.size() <= longestAddress && text.front() != '-' &&
           std::all_of(text.begin(), text.end(), isUnambiguous);
}

} // namespace monitorservice
