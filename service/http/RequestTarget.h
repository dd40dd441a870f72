#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace monitorservice {

/// A request target in origin-form (RFC 9112, section 3.2.1), decoded.
struct RequestTarget
{
    std::vector<std::string> path;
    std::vector<std::pair<std::string, std::string>> parameters;
};

/// Splits the target at "/", "?", "&" and the first "=" of each parameter, then decodes the pieces (RFC 3986,
/// section 2.1), so that an encoded delimiter is text. Nothing is collapsed and "+" stays "+".
///
/// Throws RefusedRequest(400) for any form but origin-form, a fragment, a character outside visible ASCII, an
/// incomplete percent-encoding, %00, and bytes that are not UTF-8.
RequestTarget parseRequestTarget(std::string_view target);

/// The text as one segment of a path: all but letters, digits, "-", ".", "_" and "~" is encoded.
std::string encodedSegment(std::string_view text);

} // namespace monitorservice
