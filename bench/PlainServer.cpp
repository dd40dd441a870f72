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

PlainServer::PlainServer(const QByteArray& body) : _sockets(std::make_unique<Sockets>(body))
{
    _sockets->accepting = std::thread([this] { _sockets->accept(); });
}

PlainServer::~PlainServer()
{
    {
        const std::lock_guard<std::mutex> lock(_sockets->mutex);
        _sockets->ending = true;
        for (tcp::socket& socket : _sockets->connections) {
            boost::system::error_code ignored;
            socket.shutdown(tcp::socket::shutdown_both, ignored);
        }
    }
    // A blocking accept ends with a connection.
    tcp::socket last(_sockets->context);
    boost::system::error_code ignored;
    last.connect(_sockets->acceptor.local_endpoint(), ignored);
    _sockets->accepting.join();
    for (std::thread& thread : _sockets->threads)
        thread.join();
}

QByteArray PlainServer::baseAddress() const
{
    return "http://127.0.0.1:" + QByteArray::number(_sockets->acceptor.local_endpoint().port()) + '/';
}
