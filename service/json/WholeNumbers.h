#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// The JSON text with those whole numbers that 64 bits may not hold written as appendJsonNumber() writes
/// them: readers of JSON may refuse a whole text for one of them. Everything else stays as it is.
std::string withReadableWholeNumbers(std::string_view json);

} // namespace monitorservice
