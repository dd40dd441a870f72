#include "peers/BareServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

namespace {

int listeningSocket(std::uint16_t& port)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "no socket to listen on");
    }
    port = ntohs(address.sin_port);
    return listener;
}

void watch(int epoll, int socket)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = socket;
    epoll_ctl(epoll, EPOLL_CTL_ADD, socket, &event);
}

// A request without a body comes in one piece, as it was sent.
void answerOne(int socket, const std::string& answer)
{
    std::array<char, 4096> request; // NOLINT(cppcoreguidelines-pro-type-member-init): recv() fills it
    const ssize_t size = ::recv(socket, request.data(), request.size(), 0);
    if (size <= 0) {
        ::close(socket);
        return;
    }
    if (std::string_view(request.data(), static_cast<std::size_t>(size)).find("\r\n\r\n") !=
        std::string_view::npos) {
        ::send(socket, answer.data(), answer.size(), MSG_NOSIGNAL);
    }
}

[[noreturn]] void serve(int listener, const std::string& answer)
{
    const int epoll = epoll_create1(EPOLL_CLOEXEC);
    watch(epoll, listener);
    std::array<epoll_event, 64> events{};
    for (;;) {
        const int ready = epoll_wait(epoll, events.data(), static_cast<int>(events.size()), -1);
        for (int i = 0; i < ready; ++i) {
            const int socket = events.at(static_cast<std::size_t>(i)).data.fd;
            if (socket != listener) {
                answerOne(socket, answer);
                continue;
            }
            const int accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            const int on = 1;
            setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            watch(epoll, accepted);
        }
    }
}

} // namespace

BareServer::BareServer(const std::string& answer)
{
    const int listener = listeningSocket(m_port);
    m_process = fork();
    if (m_process == 0) {
        serve(listener, answer);
    }
    ::close(listener);
}

BareServer::~BareServer()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}
