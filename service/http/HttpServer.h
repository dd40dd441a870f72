#pragma once

#include "http/HttpLimits.h"
#include "http/HttpMessage.h"
#include "http/ListenAddress.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace monitorservice {

/// What the server counts; read from any thread.
struct HttpCounters
{
    /// Answers by the hundreds of their status; [2] counts the 2xx.
    std::array<std::atomic<std::uint64_t>, 6> answers{};
    /// Requests whose handler was called, the running ones included.
    std::atomic<std::uint64_t> requests{0};
    /// Handlers waiting for a worker thread or running.
    std::atomic<std::uint64_t> requestsInProgress{0};
    /// Connections accepted since the start.
    std::atomic<std::uint64_t> connections{0};
    std::atomic<std::uint64_t> openConnections{0};
    /// Bytes of the bodies being received or handled.
    std::atomic<std::uint64_t> bodyBytes{0};
};

/// Serves HTTP/1.1 (RFC 9112) on one address: strict about framing, with a limit or a deadline on everything
/// a client may hold. One thread moves the bytes of all connections; handlers run on worker threads of their
/// own, so a slow one delays neither other answers nor deadlines. Requests that only read have theirs and all
/// others have theirs, so that reads are answered however many writes wait for one another.
class HttpServer
{
public:
    /// Listens and begins to answer at once.
    ///
    /// Throws std::runtime_error, "cannot listen on 127.0.0.1:8080: Address already in use", when it cannot.
    ///
    /// `counters` is shared with whoever reports them; the server has its own when it is null.
    HttpServer(const ListenAddress& address, const HttpLimits& limits, HttpHandler handler,
               std::shared_ptr<HttpCounters> counters = nullptr);
    /// Stops and joins.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// The port listened on: the one chosen by the system when the address said 0.
    std::uint16_t port() const;

    const HttpCounters& counters() const;

    /// Begins to stop and returns at once: no further connection is accepted, idle ones are closed, requests
    /// that have begun are answered with "Connection: close". What is not complete after the stop deadline is
    /// closed. May be called from any thread, handlers included, and more than once.
    void stop();

    /// Waits until the server has stopped and no handler runs any more. Not from a handler.
    void join();

    /// From now on SIGTERM and SIGINT stop the server. Called before anybody is told of the server, so that
    /// nobody's signal comes too early.
    void stopOnSignal();

    /// Stops on SIGTERM or SIGINT, or when somebody calls stop(); returns when everything has stopped. A
    /// second signal while requests are being finished ends the process as the signal's default does.
    void runUntilSignal();

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace monitorservice
