#include "HeldPort.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace monitorservice::test {

// Bound and not listening: then another socket may be bound to the port as well, where both allow it. Servers
// do, so that they can be started again.
HeldPort::HeldPort() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const int on = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(m_socket, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        const int reason = errno;
        close(m_socket);
        throw std::system_error(reason, std::generic_category(), "no port to be had");
    }
    m_number = ntohs(address.sin_port);
}

HeldPort::~HeldPort()
{
    close(m_socket);
}

} // namespace monitorservice::test
