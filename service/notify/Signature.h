#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// The bytes as lower-case hexadecimal digits.
std::string hexadecimal(std::string_view bytes);

/// HMAC-SHA-256 (RFC 2104) of "TIMESTAMP.BODY" in hexadecimal digits. The time is signed with the body, so
/// that who has overheard a message cannot send it again later as a new one.
std::string signatureOf(std::string_view secret, const std::string& timestamp, std::string_view body);

} // namespace monitorservice
