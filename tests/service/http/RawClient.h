#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace monitorservice::test {

/// One answer as it came over the wire.
struct RawAnswer
{
    std::string statusLine;
    unsigned status = 0;
    std::map<std::string, std::string> fields; ///< by name in lower case
    std::string body;
};

/// A blocking connection to 127.0.0.1 that sends any bytes and shows what came back.
class RawClient
{
public:
    /// A small receive buffer makes a large answer wait for this client.
    explicit RawClient(std::uint16_t port, int receiveBuffer = 0)
        : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        if (receiveBuffer > 0) {
            setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        }
        const int on = 1;
        setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        // Far beyond what any test waits for: a server that hangs fails the test instead of hanging it.
        const timeval patience{60, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);

        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            const int reason = errno;
            ::close(m_socket);
            throw std::system_error(reason, std::generic_category(), "connect");
        }
    }

    ~RawClient() { close(); }
    RawClient(RawClient&& other) noexcept : m_socket(other.m_socket), m_received(std::move(other.m_received))
    {
        other.m_socket = -1;
    }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;
    RawClient& operator=(RawClient&&) = delete;

    /// False when the server has closed the connection.
    bool send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    void shutdownSend() { ::shutdown(m_socket, SHUT_WR); }

    void close()
    {
        if (m_socket >= 0) {
            ::close(m_socket);
        }
        m_socket = -1;
    }

    /// Closes with a reset, as a client that crashes may.
    void reset()
    {
        const linger immediately{1, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
        close();
    }

    /// Reads one answer with a Content-Length, or without a body (hasBody false, for HEAD).
    RawAnswer readAnswer(bool hasBody = true)
    {
        RawAnswer answer;
        answer.statusLine = readLine();
        if (answer.statusLine.size() < 12) {
            throw std::runtime_error("no status line: " + answer.statusLine);
        }
        answer.status = static_cast<unsigned>(std::stoul(answer.statusLine.substr(9, 3)));
        for (std::string line = readLine(); !line.empty(); line = readLine()) {
            const std::size_t colon = line.find(": ");
            std::string name = line.substr(0, colon);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return std::tolower(c); });
            if (!answer.fields.emplace(name, line.substr(colon + 2)).second) {
                throw std::runtime_error("repeated field " + name);
            }
        }
        const auto length = answer.fields.find("content-length");
        if (hasBody && length != answer.fields.end()) {
            answer.body = readBytes(std::stoul(length->second));
        }
        return answer;
    }

    /// True when nothing has been left unread and the server ends the connection; waits for that.
    bool isEnded()
    {
        try {
            return m_received.empty() && !receive();
        } catch (const std::system_error& failure) {
            return failure.code() == std::errc::connection_reset;
        }
    }

    std::string readBytes(std::size_t size)
    {
        while (m_received.size() < size) {
            if (!receive()) {
                throw std::runtime_error("the connection ended within an answer");
            }
        }
        std::string bytes = m_received.substr(0, size);
        m_received.erase(0, size);
        return bytes;
    }

private:
    std::string readLine()
    {
        std::size_t end = m_received.find("\r\n");
        for (; end == std::string::npos; end = m_received.find("\r\n")) {
            if (!receive()) {
                throw std::runtime_error("the connection ended before an answer");
            }
        }
        std::string line = m_received.substr(0, end);
        m_received.erase(0, end + 2);
        return line;
    }

    bool receive()
    {
        std::array<char, 65536> bytes{};
        const ssize_t size = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        if (size < 0) {
            throw std::system_error(errno, std::generic_category(), "recv");
        }
        m_received.append(bytes.data(), static_cast<std::size_t>(size));
        return size > 0;
    }

    int m_socket;
    std::string m_received;
};

} // namespace monitorservice::test
