#pragma once

#include <string_view>

namespace monitorservice {

/// The description of the resources in OpenAPI 3.0: openapi.json beside this file.
std::string_view openApiText();

} // namespace monitorservice
