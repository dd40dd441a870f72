#pragma once

#include "time/Instant.h"

#include <string>
#include <string_view>

namespace monitorservice {

/// The text of a header field in ASCII: as it is when it is short and printable, otherwise in encoded words
/// (RFC 2047) with a folded line for each. Control characters become blanks.
std::string headerText(std::string_view text);

/// A text with "\n" at the ends of its lines in quoted-printable (RFC 2045, section 6.7), with "\r\n".
std::string quotedPrintable(std::string_view text);

/// "Mon, 21 Dec 2015 06:30:00 +0000" (RFC 5322, section 3.3).
std::string mailDate(Instant instant);

/// The text with a blank for each control character, so that a name cannot begin a line.
std::string inOneLine(std::string_view text);

} // namespace monitorservice
