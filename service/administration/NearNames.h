#pragma once

#include <string>

namespace monitorservice {

/// Whether two different names are the same but for upper and lower case, in whatever script. Both are
/// accepted side by side, but people take one for the other.
bool differInCaseOnly(const std::string& one, const std::string& other);

} // namespace monitorservice
