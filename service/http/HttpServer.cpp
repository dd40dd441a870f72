#include "http/HttpServer.h"

#include "http/DescriptorLimit.h"
#include "http/HttpSession.h"

#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <mutex>
#include <thread>
#include <vector>

namespace monitorservice {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

// Connections beyond the limit that are still told so; any further one is closed without a word.
constexpr std::size_t mostRefusals = 64;
// Descriptors for everything that is not a connection.
constexpr std::size_t otherDescriptors = 64;

HttpLimits withinDescriptors(HttpLimits limits)
{
    const std::size_t others = mostRefusals + otherDescriptors;
    const std::size_t allowed = allowDescriptors(limits.mostConnections + others);
    limits.mostConnections = std::min(limits.mostConnections, allowed > others ? allowed - others : 1);
    return limits;
}

// How often deadlines are looked at: often enough that none is exceeded by much.
std::chrono::milliseconds watchInterval(const HttpLimits& limits)
{
    const auto shortest = std::min({limits.idleDeadline, limits.headerDeadline, limits.bodyDeadline,
                                    limits.progressDeadline, limits.lingerDeadline, limits.stopDeadline});
    return std::clamp(shortest / 4, std::chrono::milliseconds(5), std::chrono::milliseconds(1000));
}

void open(tcp::acceptor& acceptor, const ListenAddress& address)
{
    const tcp::endpoint endpoint(asio::ip::make_address(address.host), address.port);
    acceptor.open(endpoint.protocol());
#ifndef _WIN32
    // There the option would let a second process take the port over.
    acceptor.set_option(asio::socket_base::reuse_address(true));
#endif
    if (endpoint.protocol() == tcp::v6()) {
        acceptor.set_option(asio::ip::v6_only(false));
    }
    acceptor.bind(endpoint);
    acceptor.listen();
}

} // namespace

class HttpServer::Implementation
{
public:
    Implementation(const ListenAddress& address, const HttpLimits& limits, HttpHandler handler,
                   std::shared_ptr<HttpCounters> counters)
        : m_sessions(withinDescriptors(limits), std::move(handler), std::move(counters)),
          m_watchInterval(watchInterval(limits))
    {
        try {
            open(m_acceptor, address);
            m_port = m_acceptor.local_endpoint().port();
        } catch (const boost::system::system_error& failure) {
            throw std::runtime_error("cannot listen on " + toText(address) + ": " + failure.code().message());
        }
        m_sessions.onDrained = [this] {
            m_watch.cancel();
        };
        accept();
        watch();
        m_thread = std::thread([this] { run(); });
    }

    std::uint16_t port() const { return m_port; }
    const HttpCounters& counters() const { return *m_sessions.counters; }

    void stop()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_isStopRequested) {
                return;
            }
            m_isStopRequested = true;
            m_signals.reset();
        }
        asio::post(m_sessions.io, [this] { beginStop(); });
    }

    void stopOnSignal()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_isStopRequested || m_signals) {
            return;
        }
        m_signals.emplace(m_sessions.io, SIGINT, SIGTERM);
        m_signals->async_wait([this](const error_code& error, int /*signal*/) {
            if (!error) {
                stop();
            }
        });
    }

    void join()
    {
        std::call_once(m_joined, [this] {
            m_thread.join();
            m_sessions.onDrained = nullptr;
            // Requests that no worker has taken up have lost their connection; running ones are waited for.
            m_sessions.readers.stop();
            m_sessions.writers.stop();
            m_sessions.readers.join();
            m_sessions.writers.join();
        });
    }

private:
    void run()
    {
        for (;;) {
            try {
                m_sessions.io.run();
                return;
            } catch (const std::exception& failure) {
                // Out of memory, for instance: the session concerned is gone, the others go on.
                std::cerr << std::string("http: a connection was dropped: ") + failure.what() + "\n"
                          << std::flush;
            }
        }
    }

    void accept()
    {
        m_acceptor.async_accept([this](const error_code& error, tcp::socket socket) {
            if (!m_acceptor.is_open()) {
                return;
            }
            if (error && error != asio::error::connection_aborted) {
                return acceptLater();
            }
            // Asked for first, so that the loop outlives whatever happens to this connection.
            accept();
            if (!error) {
                welcome(std::move(socket));
            }
        });
    }

    // No descriptor is free, for instance: asking again at once would ask in a circle.
    void acceptLater()
    {
        m_acceptPause.expires_after(std::chrono::milliseconds(50));
        m_acceptPause.async_wait([this](const error_code& error) {
            if (!error && m_acceptor.is_open()) {
                accept();
            }
        });
    }

    void welcome(tcp::socket socket)
    {
        const std::size_t open = m_sessions.open.size();
        if (open >= m_sessions.limits.mostConnections + mostRefusals) {
            return;
        }
        const auto session = std::make_shared<HttpSession>(m_sessions, std::move(socket));
        if (open >= m_sessions.limits.mostConnections) {
            session->refuse(RefusedRequest(503, "the service has too many connections"));
        } else {
            session->start();
        }
    }

    void watch()
    {
        m_watch.expires_after(m_watchInterval);
        m_watch.async_wait([this](const error_code& /*cancelled*/) {
            const auto now = HttpSession::Clock::now();
            const bool isOver = m_sessions.isStopping && (m_sessions.open.empty() || now >= m_stopDeadline);
            for (HttpSession* session : m_sessions.open) {
                if (isOver) {
                    session->close();
                } else {
                    session->checkDeadline(now);
                }
            }
            if (!isOver) {
                watch();
            }
        });
    }

    void beginStop()
    {
        m_sessions.isStopping = true;
        m_stopDeadline = HttpSession::Clock::now() + m_sessions.limits.stopDeadline;
        error_code ignored;
        m_acceptor.close(ignored);
        m_acceptPause.cancel();
        for (HttpSession* session : m_sessions.open) {
            session->closeIfIdle();
        }
        if (m_sessions.open.empty()) {
            m_watch.cancel();
        }
    }

    HttpSessions m_sessions;
    std::chrono::milliseconds m_watchInterval;
    tcp::acceptor m_acceptor{m_sessions.io};
    asio::steady_timer m_watch{m_sessions.io};
    asio::steady_timer m_acceptPause{m_sessions.io};
    HttpSession::Clock::time_point m_stopDeadline;
    std::uint16_t m_port = 0;
    std::mutex m_mutex; // guards the two that follow
    bool m_isStopRequested = false;
    std::optional<asio::signal_set> m_signals;
    std::once_flag m_joined;
    std::thread m_thread;
};

HttpServer::HttpServer(const ListenAddress& address, const HttpLimits& limits, HttpHandler handler,
                       std::shared_ptr<HttpCounters> counters)
    : m_implementation(
          std::make_unique<Implementation>(address, limits, std::move(handler),
                                           counters ? std::move(counters) : std::make_shared<HttpCounters>()))
{
}

HttpServer::~HttpServer()
{
    try {
        stop();
        join();
    } catch (...) {
        // A server that cannot be stopped would go on using what its owner destroys next.
        std::terminate();
    }
}

std::uint16_t HttpServer::port() const
{
    return m_implementation->port();
}

const HttpCounters& HttpServer::counters() const
{
    return m_implementation->counters();
}

void HttpServer::stop()
{
    m_implementation->stop();
}

void HttpServer::join()
{
    m_implementation->join();
}

void HttpServer::stopOnSignal()
{
    m_implementation->stopOnSignal();
}

void HttpServer::runUntilSignal()
{
    m_implementation->stopOnSignal();
    m_implementation->join();
}

} // namespace monitorservice
