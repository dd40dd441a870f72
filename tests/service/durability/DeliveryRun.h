#pragma once

#include "DeliveringClient.h"
#include "SiteData.h"
#include "service/admin/ServiceProcess.h"
#include "service/http/RawClient.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace monitorservice::test {

/// The service's process on a data file or a database, listening on a port of its own.
class DataService
{
public:
    explicit DataService(const std::string& location, void (*beforeStart)() = nullptr)
        : m_process(
              {"serve", isDatabase(location) ? "--store" : "--data", location, "--listen", "127.0.0.1:0"},
              beforeStart)
    {
        const std::string line = m_process.readLine();
        const std::string begin = "monitor-service listening on http://127.0.0.1:";
        if (line.substr(0, begin.size()) != begin) {
            throw std::runtime_error("not ready: " + line + m_process.readErrors());
        }
        m_port = static_cast<std::uint16_t>(std::stoul(line.substr(begin.size())));
    }

    ServiceProcess& process() { return m_process; }
    std::uint16_t port() const { return m_port; }

private:
    ServiceProcess m_process;
    std::uint16_t m_port = 0;
};

/// A connection of a client with the site's token.
class ClientConnection
{
public:
    ClientConnection(std::uint16_t port, std::string token) : m_client(port), m_token(std::move(token)) {}

    RawAnswer call(const std::string& method, const std::string& path, const std::string& body = {})
    {
        m_client.send(method + " /monitor-service/" + path +
                      " HTTP/1.1\r\nHost: h\r\nAuthorization: Bearer " + m_token +
                      "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        return m_client.readAnswer();
    }

    /// Nothing when the connection ends before the answer.
    std::optional<ServiceAnswer> send(const std::string& method, const std::string& path,
                                      const std::string& body)
    {
        try {
            const RawAnswer answer = call(method, path, body);
            return ServiceAnswer{answer.status, answer.body};
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

private:
    RawClient m_client;
    std::string m_token;
};

/// Deliveries of several clients at once, each on a connection and a thread of its own, until they are no
/// longer answered or the object ends.
class DeliveryRun
{
public:
    DeliveryRun(std::vector<std::unique_ptr<DeliveringClient>>& clients, std::uint16_t port,
                const std::string& token)
        : DeliveryRun(clients, std::vector<std::uint16_t>{port}, token)
    {
    }
    /// To several services in turn, the first client to the first of them.
    DeliveryRun(std::vector<std::unique_ptr<DeliveringClient>>& clients,
                const std::vector<std::uint16_t>& ports, const std::string& token)
    {
        m_clients = clients.size();
        for (const auto& client : clients) {
            const std::uint16_t port = ports.at(m_threads.size() % ports.size());
            m_threads.emplace_back([this, &client = *client, port, token] {
                deliver(client, port, token);
                --m_clients;
            });
        }
    }
    ~DeliveryRun()
    {
        m_isStopped = true;
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }
    DeliveryRun(const DeliveryRun&) = delete;
    DeliveryRun& operator=(const DeliveryRun&) = delete;

    /// The number of requests answered 2xx so far.
    int answered() const { return m_answered; }

    /// Waits until so many requests have been answered 2xx, or none will be any more.
    void waitForAnswers(int number) const
    {
        while (m_answered < number && m_clients > 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }

private:
    void deliver(DeliveringClient& client, std::uint16_t port, const std::string& token)
    {
        try {
            ClientConnection connection(port, token);
            const auto send = [&](const std::string& method, const std::string& path,
                                  const std::string& body) {
                std::optional<ServiceAnswer> answer = connection.send(method, path, body);
                m_answered += answer && answer->status == 200U ? 1 : 0;
                return answer;
            };
            client.run(send, m_isStopped);
        } catch (const std::exception&) {
            // The service has ended before this client came.
        }
    }

    std::atomic<int> m_answered{0};
    std::atomic<std::size_t> m_clients{0}; ///< those that still deliver
    std::atomic<bool> m_isStopped{false};
    std::vector<std::thread> m_threads;
};

} // namespace monitorservice::test
