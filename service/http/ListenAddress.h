#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// An IP address and a port to listen on.
struct ListenAddress
{
    std::string host = "127.0.0.1"; ///< IPv4 or IPv6 address, without brackets
    std::uint16_t port = 0;         ///< 0: the system chooses a free one
};

/// Reads "127.0.0.1:8080" or "[::1]:8080". Throws std::invalid_argument that quotes the text and says what is
/// wrong with it. A host name is refused: it may stand for several addresses, and which of them is listened
/// on would be a guess.
ListenAddress parseListenAddress(std::string_view text);

/// The address as parseListenAddress reads it.
std::string toText(const ListenAddress& address);

} // namespace monitorservice
