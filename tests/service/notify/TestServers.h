#pragma once

#include "support/ChildProcess.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A free port of 127.0.0.1 that nobody else gets as long as the object lives. Connections are refused unless
/// a server listens on it, with SO_REUSEPORT.
class KeptPort
{
public:
    KeptPort() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const int on = 1;
        setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        setsockopt(m_socket, SOL_SOCKET, SO_REUSEPORT, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (bind(m_socket, any, length) != 0 || getsockname(m_socket, any, &length) != 0) {
            throw std::system_error(errno, std::generic_category(), "no port to be had");
        }
        m_number = ntohs(address.sin_port);
    }
    ~KeptPort() { ::close(m_socket); }
    KeptPort(const KeptPort&) = delete;
    KeptPort& operator=(const KeptPort&) = delete;

    std::uint16_t number() const { return m_number; }

private:
    int m_socket;
    std::uint16_t m_number = 0;
};

/// A server that runs as a process of its own, keeps in a folder what it is sent, and can be killed and
/// started again on the same port.
class TestServer
{
public:
    /// The port is not listened on before start().
    TestServer(std::string script, std::filesystem::path folder)
        : m_script(std::move(script)), m_folder(std::move(folder))
    {
        std::filesystem::create_directories(m_folder);
    }

    void start(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> command{PYTHON_EXECUTABLE,      m_script,   "--port",
                                         std::to_string(port()), "--folder", m_folder.string()};
        command.insert(command.end(), options.begin(), options.end());
        m_process.reset();
        m_process = std::make_unique<ChildProcess>(command);
        const std::string line = m_process->readLine();
        if (line != "ready") {
            throw std::runtime_error(m_script + " is not ready: " + m_process->readErrors());
        }
    }
    void kill() { m_process.reset(); }
    /// Waits for a server that ends by itself.
    void wait() { m_process->wait(); }

    std::uint16_t port() const { return m_port.number(); }
    bool has(const std::string& name) const { return std::filesystem::exists(m_folder / name); }

    /// Everything that was kept, in no particular order.
    std::vector<std::string> kept() const
    {
        std::vector<std::string> texts;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            if (entry.path().filename().string().front() != '.') {
                std::ifstream stream(entry.path(), std::ios::binary);
                texts.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
            }
        }
        return texts;
    }

private:
    KeptPort m_port;
    std::string m_script;
    std::filesystem::path m_folder;
    std::unique_ptr<ChildProcess> m_process;
};

/// Waits until it is so; false when a time has passed that only a fault takes.
template <typename Condition>
bool comesTrue(const Condition& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace monitorservice::test
