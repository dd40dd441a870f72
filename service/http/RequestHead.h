#pragma once

#include "http/HttpLimits.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// What the header of one request says, as far as this service listens to it.
struct RequestHead
{
    std::string method;
    std::string target;
    std::optional<std::string> authorization;
    std::string contentType;
    std::optional<std::uint64_t> contentLength;
    bool isChunked = false;
    /// HTTP/1.1 and no "Connection: close"; an HTTP/1.0 connection is never kept.
    bool isKeptAlive = false;
    bool expectsContinue = false;
};

/// Looks for the empty line that ends a header in `text`, what has arrived so far. `examined` is how much of
/// it earlier calls have examined, and is brought up to date. Gives the header's length with its empty line;
/// nothing when more must arrive.
///
/// Throws RefusedRequest(400) as soon as a line ends in a bare LF or the first byte cannot begin a method.
std::optional<std::size_t> findHeadEnd(std::string_view text, std::size_t& examined);

/// Reads a complete header strictly (RFC 9112, sections 2 to 6, and RFC 9110, section 5): whatever two
/// implementations might frame differently is refused.
///
/// Throws RefusedRequest: 400 for malformed lines, folded lines, whitespace before a colon, repeated Host,
/// Content-Length, Transfer-Encoding, Authorization or Content-Type, length together with chunks, HTTP/1.1
/// without Host; 413, 414, 415, 417, 431, 501, 505 as RFC 9110, section 15, and RFC 6585 define them.
RequestHead parseRequestHead(std::string_view text, const HttpLimits& limits);

} // namespace monitorservice
