#pragma once

#include <cstddef>

namespace monitorservice {

/// The longest answer in bytes: as much as the client library takes. A longer one is refused, never cut,
/// since what was cut could not be told from the whole.
constexpr std::size_t largestAnswer = std::size_t{256} * 1024 * 1024;

/// Throws ApiError 413 that says how to ask for less when an answer of so many bytes is too long.
void requireRoom(std::size_t bytes);

} // namespace monitorservice
