#include "PlainServer.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace asio = boost::asio;
using asio::ip::tcp;

struct PlainServer::Sockets
{
    explicit Sockets(const QByteArray& body)
        : acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)),
          answer("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                 std::to_string(body.size()) + "\r\n\r\n" + body.toStdString())
    {
    }

    void accept()
    {
        for (;;) {
            tcp::socket socket(context);
            boost::system::error_code error;
            acceptor.accept(socket, error);
            const std::lock_guard<std::mutex> lock(mutex);
            if (error || ending)
                return;
            socket.set_option(tcp::no_delay(true), error);
            connections.push_back(std::move(socket));
            tcp::socket& connection = connections.back();
            threads.emplace_back([this, &connection] { serve(connection); });
        }
    }

    void serve(tcp::socket& socket) const
    {
        std::string received;
        for (;;) {
            boost::system::error_code error;
            const std::size_t head =
                asio::read_until(socket, asio::dynamic_buffer(received), "\r\n\r\n", error);
            if (error)
                return;
            received.erase(0, head);
            asio::write(socket, asio::buffer(answer), error);
            if (error)
                return;
        }
    }

    asio::io_context context;
    tcp::acceptor acceptor;
    const std::string answer;
    std::mutex mutex;
    bool ending = false;
    std::list<tcp::socket> connections;
    std::list<std::thread> threads;
    std::thread accepting;
};

PlainServer::PlainServer(const QByteArray& body) : m_sockets(std::make_unique<Sockets>(body))
{
    m_sockets->accepting = std::thread([this] { m_sockets->accept(); });
}

PlainServer::~PlainServer()
{
    {
        const std::lock_guard<std::mutex> lock(m_sockets->mutex);
        m_sockets->ending = true;
        for (tcp::socket& socket : m_sockets->connections) {
            boost::system::error_code ignored;
            socket.shutdown(tcp::socket::shutdown_both, ignored);
        }
    }
    // A blocking accept ends with a connection.
    tcp::socket last(m_sockets->context);
    boost::system::error_code ignored;
    last.connect(m_sockets->acceptor.local_endpoint(), ignored);
    m_sockets->accepting.join();
    for (std::thread& thread : m_sockets->threads)
        thread.join();
}

QByteArray PlainServer::baseAddress() const
{
    return "http://127.0.0.1:" + QByteArray::number(m_sockets->acceptor.local_endpoint().port()) + '/';
}
