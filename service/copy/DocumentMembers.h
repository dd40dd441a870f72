#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// The text that a stored document has as a member. Throws DamagedDocument.
std::string memberOf(std::string_view document, const char* name);

} // namespace monitorservice
