#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <memory>

/// An HTTP/1.1 server of blocking sockets in threads of its own, without Qt's event loop: as fast as one can
/// be, so that what is measured is the client. Every request gets the same answer on a connection that stays
/// open.
class PlainServer
{
public:
    /// Listens on a free port of 127.0.0.1.
    explicit PlainServer(const QByteArray& body);
    /// Ends its threads; the clients' connections must be closed or idle.
    ~PlainServer();
    PlainServer(const PlainServer&) = delete;
    PlainServer& operator=(const PlainServer&) = delete;

    /// What every request is answered from now on.
    void setBody(const QByteArray& body);

    /// How long a request waits for its answer from now on; not at all at first.
    void setDelay(std::chrono::microseconds delay);

    /// "http://127.0.0.1:PORT/".
    QByteArray baseAddress() const;
    /// Whole requests so far.
    std::int64_t requestCount() const;

private:
    struct Sockets;
    std::unique_ptr<Sockets> m_sockets;
};
