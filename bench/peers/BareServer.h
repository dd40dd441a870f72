#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

/// The least that answering over HTTP costs: a process of one thread and epoll(7) that looks for the end of a
/// header and answers always the same bytes.
class BareServer
{
public:
    /// Listens on a free port of 127.0.0.1.
    explicit BareServer(const std::string& answer);
    /// Ends the process.
    ~BareServer();
    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

    std::uint16_t port() const { return m_port; }

private:
    std::uint16_t m_port = 0;
    pid_t m_process = -1;
};
