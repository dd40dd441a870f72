#pragma once

#include <simdjson.h>

#include <string>

namespace monitorservice {

/// A text member of a stored document. Throws simdjson::simdjson_error when there is none.
inline std::string storedText(simdjson::dom::element object, const char* name)
{
    return std::string(object[name].get_string().value());
}

} // namespace monitorservice
