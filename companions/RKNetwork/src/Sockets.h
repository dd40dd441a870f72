#pragma once

#include <curl/curl.h>

namespace rk {

/// The few calls on bare sockets; all of them are non-blocking sockets of libcurl's.

/// True when bytes, the peer's end of the connection, or an error are there to be read.
bool hasInput(curl_socket_t socket);
/// Ends a connection and drops what it has received; the socket stays open until it is closed.
void endConnection(curl_socket_t socket);
/// 0 on success.
int closeSocket(curl_socket_t socket);

} // namespace rk
