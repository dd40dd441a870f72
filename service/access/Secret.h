#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// A new token: "rkm_" and 256 random bits as 64 hexadecimal digits. Throws std::runtime_error when the
/// system has no randomness to give.
std::string newTokenText();

/// The 32 bytes of the text's SHA-256. A token is random enough that its hash needs neither salt nor
/// slowness.
std::string sha256(std::string_view text);

} // namespace monitorservice
