#pragma once

#include <chrono>

namespace monitorservice {

/// Waits until something can be read from a socket, or, where that is wanted as well, written to it. False
/// when the time has passed before.
bool waitForSocket(int socket, bool alsoToWrite, std::chrono::milliseconds patience);

} // namespace monitorservice
