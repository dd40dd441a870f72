#include "PlainServer.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/completion_condition.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <atomic>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

struct Connection
{
    explicit Connection(tcp::socket accepted) : socket(std::move(accepted)) {}

    tcp::socket socket;
    std::atomic<bool> isOver = false;
    std::thread thread;
};

std::size_t bodySize(const std::string& head)
{
    constexpr const char name[] = "Content-Length: ";
    const std::size_t found = head.find(name);
    return found == std::string::npos ? 0 : std::stoul(head.substr(found + sizeof(name) - 1));
}

} // namespace

struct PlainServer::Sockets
{
    explicit Sockets(const QByteArray& body)
        : acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)), answer(answerOf(body))
    {
    }

    using Answer = std::shared_ptr<const std::string>;

    static Answer answerOf(const QByteArray& body)
    {
        return std::make_shared<const std::string>(
            "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
            std::to_string(body.size()) + "\r\n\r\n" + body.toStdString());
    }

    void accept()
    {
        for (;;) {
            tcp::socket socket(context);
            boost::system::error_code error;
            acceptor.accept(socket, error);
            const std::lock_guard<std::mutex> lock(mutex);
            if (error || isEnding) {
                return;
            }
            connections.remove_if([](Connection& connection) {
                if (!connection.isOver) {
                    return false;
                }
                connection.thread.join();
                return true;
            });
            socket.set_option(tcp::no_delay(true), error);
            Connection& connection = connections.emplace_back(std::move(socket));
            connection.thread = std::thread([this, &connection] {
                serve(connection.socket);
                connection.isOver = true;
            });
        }
    }

    void serve(tcp::socket& socket)
    {
        std::string received;
        for (;;) {
            boost::system::error_code error;
            const std::size_t head =
                asio::read_until(socket, asio::dynamic_buffer(received), "\r\n\r\n", error);
            if (error) {
                return;
            }
            const std::size_t whole = head + bodySize(received.substr(0, head));
            if (received.size() < whole) {
                asio::read(socket, asio::dynamic_buffer(received),
                           asio::transfer_exactly(whole - received.size()), error);
                if (error) {
                    return;
                }
            }
            received.erase(0, whole);
            ++requests;
            if (const std::chrono::microseconds time = delay; time.count() > 0) {
                std::this_thread::sleep_for(time);
            }
            asio::write(socket, asio::buffer(*currentAnswer()), error);
            if (error) {
                return;
            }
        }
    }

    Answer currentAnswer()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return answer;
    }

    asio::io_context context;
    tcp::acceptor acceptor;
    std::mutex mutex; // of what follows
    Answer answer;
    bool isEnding = false;
    std::list<Connection> connections;
    std::atomic<std::int64_t> requests = 0;
    std::atomic<std::chrono::microseconds> delay{};
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
        m_sockets->isEnding = true;
        for (Connection& connection : m_sockets->connections) {
            boost::system::error_code ignored;
            connection.socket.shutdown(tcp::socket::shutdown_both, ignored);
        }
    }
    // A blocking accept ends with a connection.
    tcp::socket last(m_sockets->context);
    boost::system::error_code ignored;
    last.connect(m_sockets->acceptor.local_endpoint(), ignored);
    m_sockets->accepting.join();
    for (Connection& connection : m_sockets->connections) {
        connection.thread.join();
    }
}

void PlainServer::setBody(const QByteArray& body)
{
    const Sockets::Answer answer = Sockets::answerOf(body);
    const std::lock_guard<std::mutex> lock(m_sockets->mutex);
    m_sockets->answer = answer;
}

void PlainServer::setDelay(std::chrono::microseconds delay)
{
    m_sockets->delay = delay;
}

QByteArray PlainServer::baseAddress() const
{
    return "http://127.0.0.1:" + QByteArray::number(m_sockets->acceptor.local_endpoint().port()) + '/';
}

std::int64_t PlainServer::requestCount() const
{
    return m_sockets->requests;
}
