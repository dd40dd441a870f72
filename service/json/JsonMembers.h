#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// The text of a JSON object with this value, JSON as well, for the member of this name, which needs no
/// escapes: in the place of the one that it has, otherwise behind the others. All else stays byte for byte.
std::string withMember(std::string_view object, std::string_view name, std::string_view value);

} // namespace monitorservice
