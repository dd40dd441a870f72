#include "LoadGenerator.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view statusLine = "HTTP/1.1 200 OK\r\n";
constexpr std::string_view lengthField = "\r\nContent-Length: ";
constexpr int patience = 60'000; // milliseconds; no server that answers at all takes so long

std::system_error failure(const char* what)
{
    return {errno, std::generic_category(), what};
}

int connectedSocket(std::uint16_t port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        throw failure("socket");
    }
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const std::system_error error = failure("connect");
        ::close(socket);
        throw error;
    }
    return socket;
}

} // namespace

double percentile(const std::vector<double>& rising, double part)
{
    return rising.at(static_cast<std::size_t>(part * static_cast<double>(rising.size() - 1)));
}

struct LoadGenerator::Connection
{
    explicit Connection(std::uint16_t port) : socket(connectedSocket(port)) {}
    ~Connection() { ::close(socket); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket;
    std::string received;
    Clock::time_point sent;
};

LoadGenerator::LoadGenerator(std::uint16_t port, std::string request, std::string body,
                             std::size_t connections)
    : m_request(std::move(request)), m_body(std::move(body)), m_epoll(epoll_create1(EPOLL_CLOEXEC))
{
    for (std::size_t i = 0; i < connections; ++i) {
        Connection& connection = *m_connections.emplace_back(std::make_unique<Connection>(port));
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.ptr = &connection;
        if (epoll_ctl(m_epoll, EPOLL_CTL_ADD, connection.socket, &event) != 0) {
            throw failure("epoll_ctl");
        }
    }
}

LoadGenerator::~LoadGenerator()
{
    ::close(m_epoll);
}

void LoadGenerator::send(Connection& connection) const
{
    connection.sent = Clock::now();
    // A request is smaller than what a socket takes at once.
    const ssize_t sent = ::send(connection.socket, m_request.data(), m_request.size(), MSG_NOSIGNAL);
    if (sent != static_cast<ssize_t>(m_request.size())) {
        throw failure("send");
    }
}

bool LoadGenerator::isWhole(std::string_view received) const
{
    const std::size_t headEnd = received.find("\r\n\r\n");
    if (headEnd == std::string_view::npos) {
        return false;
    }
    const std::string_view head = received.substr(0, headEnd + 2);
    const std::size_t field = head.find(lengthField);
    std::size_t length = 0;
    if (field != std::string_view::npos) {
        std::from_chars(head.data() + field + lengthField.size(), head.data() + head.size(), length);
    }
    const std::string_view body = received.substr(headEnd + 4);
    if (head.substr(0, statusLine.size()) != statusLine || length != m_body.size() ||
        body != std::string_view(m_body).substr(0, body.size())) {
        throw std::runtime_error("a wrong answer: " + std::string(received));
    }
    return body.size() == length;
}

bool LoadGenerator::receive(Connection& connection) const
{
    std::array<char, 16 * 1024> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): recv() fills it
    const ssize_t size = ::recv(connection.socket, bytes.data(), bytes.size(), 0);
    if (size <= 0) {
        throw std::runtime_error("a connection ended before its answer");
    }
    connection.received.append(bytes.data(), static_cast<std::size_t>(size));
    if (!isWhole(connection.received)) {
        return false;
    }
    connection.received.clear();
    return true;
}

Load LoadGenerator::run(std::size_t requests)
{
    Load load;
    load.milliseconds.reserve(requests);
    const Clock::time_point begin = Clock::now();
    std::size_t sent = 0;
    for (; sent < std::min(requests, m_connections.size()); ++sent) {
        send(*m_connections[sent]);
    }
    std::array<epoll_event, 64> events{};
    while (load.milliseconds.size() < requests) {
        const int ready = epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), patience);
        if (ready <= 0) {
            throw std::runtime_error("no answer comes");
        }
        for (int i = 0; i < ready; ++i) {
            auto& connection = *static_cast<Connection*>(events.at(static_cast<std::size_t>(i)).data.ptr);
            if (!receive(connection)) {
                continue;
            }
            load.milliseconds.push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - connection.sent).count());
            if (sent < requests) {
                ++sent;
                send(connection);
            }
        }
    }
    load.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    std::sort(load.milliseconds.begin(), load.milliseconds.end());
    return load;
}
