#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// Reads the body {"name": …}. Throws ApiError 400 that names the member.
std::string parseNameBody(std::string_view json);

} // namespace monitorservice
