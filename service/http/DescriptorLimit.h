#pragma once

#include <cstddef>

namespace monitorservice {

/// Raises what this process may open towards the number wanted, as far as the system lets it without
/// privileges. Many systems start a process with 1 024, fewer than the connections the service keeps.
///
/// Gives how many descriptors the process may have open now, at most the number wanted.
std::size_t allowDescriptors(std::size_t wanted);

} // namespace monitorservice
