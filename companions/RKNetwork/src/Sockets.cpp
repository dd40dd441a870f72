#include "Sockets.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace rk {

namespace {

#ifdef Q_OS_WIN
constexpr int bothDirections = SD_BOTH;
#else
constexpr int bothDirections = SHUT_RDWR;
#endif

bool lastCallWouldHaveBlocked()
{
#ifdef Q_OS_WIN
    return WSAGetLastError() == WSAEWOULDBLOCK;
#else
    return errno == EAGAIN || errno == EWOULDBLOCK;
#endif
}

} // namespace

bool hasInput(curl_socket_t socket)
{
    char byte = 0;
    return ::recv(socket, &byte, 1, MSG_PEEK) >= 0 || !lastCallWouldHaveBlocked();
}

void endConnection(curl_socket_t socket)
{
    ::shutdown(socket, bothDirections);
    char dropped[4096];
    while (::recv(socket, dropped, sizeof dropped, 0) > 0) {
    }
}

int closeSocket(curl_socket_t socket)
{
#ifdef Q_OS_WIN
    return ::closesocket(socket);
#else
    return ::close(socket);
#endif
}

} // namespace rk
