#include "support/CommitProxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace monitorservice::test {

namespace {

// The name of a server's socket in its folder, for the port that is meant when none is named.
constexpr const char* socketName = "/.s.PGSQL.5432";
constexpr std::string_view hostMember = "host=";

int newSocket()
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        throw std::runtime_error("no socket to be had");
    }
    return socket;
}

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    return address;
}

// Empty at the end of the connection.
std::string receive(int socket)
{
    std::array<char, 65536> bytes{};
    const ssize_t count = recv(socket, bytes.data(), bytes.size(), 0);
    return std::string(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
}

bool sendAll(int socket, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool hasCommit(const std::string& bytes)
{
    return bytes.find(std::string("COMMIT\0", 7)) != std::string::npos;
}

} // namespace

CommitProxy::CommitProxy(const std::string& url) : m_url(url)
{
    const std::size_t begin = url.find(hostMember) + hostMember.size();
    const std::size_t length = url.find('&', begin) - begin;
    m_server = url.substr(begin, length) + socketName;
    m_url.replace(begin, length, m_folder.path().string());
    listen();
}

CommitProxy::~CommitProxy()
{
    m_isEnding = true;
    shutdown(m_listener, SHUT_RDWR);
    m_accepting.join();
    {
        const std::lock_guard lock(m_mutex);
        for (const int socket : m_sockets) {
            shutdown(socket, SHUT_RDWR);
        }
    }
    for (std::thread& connection : m_connections) {
        connection.join();
    }
    for (const int socket : m_sockets) {
        close(socket);
    }
    close(m_listener);
}

void CommitProxy::listen()
{
    constexpr int backlog = 16;
    m_listener = newSocket();
    const sockaddr_un address = addressOf(m_folder.path().string() + socketName);
    if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(m_listener, backlog) != 0) {
        throw std::runtime_error("the proxy cannot listen");
    }
    m_accepting = std::thread([this] { accept(); });
}

void CommitProxy::accept()
{
    while (!m_isEnding) {
        const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            continue;
        }
        watch(client);
        if (m_isRefusing) {
            shutdown(client, SHUT_RDWR);
        } else {
            m_connections.emplace_back([this, client] { connect(client); });
        }
    }
}

void CommitProxy::connect(int client)
{
    const int server = newSocket();
    watch(server);
    const sockaddr_un address = addressOf(m_server);
    if (::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        pass(client, server);
    }
    shutdown(client, SHUT_RDWR);
    shutdown(server, SHUT_RDWR);
}

// Until either side ends.
void CommitProxy::pass(int client, int server)
{
    constexpr int forever = -1;
    std::array<pollfd, 2> sides{{{client, POLLIN, 0}, {server, POLLIN, 0}}};
    while (poll(sides.data(), sides.size(), forever) > 0) {
        if (sides[0].revents != 0) {
            const std::string bytes = receive(client);
            if (bytes.empty() ||
                !(hasCommit(bytes) ? passCommit(client, server, bytes) : sendAll(server, bytes))) {
                return;
            }
        }
        if (sides[1].revents != 0) {
            const std::string bytes = receive(server);
            if (bytes.empty() || !sendAll(client, bytes)) {
                return;
            }
        }
    }
}

// False when the connection is to end.
bool CommitProxy::passCommit(int client, int server, const std::string& bytes)
{
    switch (m_fate.exchange(Fate::Passed)) {
    case Fate::Lost:
        return false;
    case Fate::Unanswered:
        sendAll(server, bytes);
        receive(server);
        return false;
    case Fate::Swallowed:
        receive(client); // its end
        return false;
    case Fate::Passed:
        break;
    }
    return sendAll(server, bytes);
}

void CommitProxy::watch(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_sockets.push_back(socket);
    if (m_isEnding) {
        shutdown(socket, SHUT_RDWR);
    }
}

} // namespace monitorservice::test
