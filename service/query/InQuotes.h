#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// Valid UTF-8 \a text between quotation marks for a message, shortened when it is long.
std::string inQuotes(std::string_view text);

} // namespace monitorservice
