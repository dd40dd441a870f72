#pragma once

#include <string_view>

namespace monitorservice {

/// Whether the text is a mail address that may stand in a header and in a command to a mail server:
/// NAME@DOMAIN in printable ASCII, without blanks and without the characters that have a meaning there
/// (RFC 5322, section 3.2.3). What is valid but unusual, as a quoted name, is not taken.
bool isMailAddress(std::string_view text);

} // namespace monitorservice
