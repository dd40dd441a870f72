#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// Valid UTF-8 `text` for a message: cut between two characters, with an ellipsis, when it is long.
std::string shortened(std::string_view text);

/// Valid UTF-8 `text` between quotation marks for a message, shortened when it is long.
std::string quotedText(std::string_view text);

} // namespace monitorservice
