#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// The one spelling of a depth: what is written as a decimal number has neither a plus sign nor zeros that
/// say nothing, so that "2.5", "2.50" and "+02.5" are one depth. Any other text is a depth of its own.
std::string settledDepth(std::string_view depth);

} // namespace monitorservice
