#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What a server did under load.
struct Load
{
    double seconds = 0;               ///< from the first request to the last answer
    std::vector<double> milliseconds; ///< from each request to the end of its answer, rising
};

/// The value below which the part (0 to 1) of the values lies; they rise.
double percentile(const std::vector<double>& rising, double part);

/// Asks an HTTP/1.1 server on 127.0.0.1 for one thing over connections that stay open, as fast as it answers:
/// each connection sends its next request when it has its answer. One thread and epoll(7), so that most of
/// the machine is left to the server.
class LoadGenerator
{
public:
    /// Connects. `request` is the bytes of one request, `body` what each answer's body must be.
    LoadGenerator(std::uint16_t port, std::string request, std::string body, std::size_t connections);
    ~LoadGenerator();
    LoadGenerator(const LoadGenerator&) = delete;
    LoadGenerator& operator=(const LoadGenerator&) = delete;

    /// Sends so many requests over all connections together. Throws std::runtime_error when an answer is not
    /// 200 with the length and the bytes of the body, or does not come.
    Load run(std::size_t requests);

private:
    struct Connection;

    void send(Connection& connection) const;
    bool receive(Connection& connection) const;
    bool isWhole(std::string_view received) const;

    std::string m_request;
    std::string m_body;
    std::vector<std::unique_ptr<Connection>> m_connections;
    int m_epoll;
};
