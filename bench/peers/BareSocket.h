#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/completion_condition.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <cstdint>
#include <string>

/// The least that HTTP over a kept connection can cost: one write, and reading up to the length that the head
/// says.
class BareSocket
{
public:
    explicit BareSocket(std::uint16_t port) : m_socket(m_context)
    {
        using boost::asio::ip::tcp;
        m_socket.connect(tcp::endpoint(boost::asio::ip::address_v4::loopback(), port));
        m_socket.set_option(tcp::no_delay(true));
    }

    /// Sends a whole request; the number of bytes of the answer's body.
    std::size_t exchange(const std::string& request)
    {
        namespace asio = boost::asio;
        asio::write(m_socket, asio::buffer(request));
        const std::size_t head = asio::read_until(m_socket, asio::dynamic_buffer(m_received), "\r\n\r\n");
        constexpr const char name[] = "Content-Length: ";
        const std::size_t size = std::stoul(m_received.substr(m_received.find(name) + sizeof(name) - 1, 20));
        const std::size_t whole = head + size;
        if (m_received.size() < whole) {
            asio::read(m_socket, asio::dynamic_buffer(m_received),
                       asio::transfer_exactly(whole - m_received.size()));
        }
        m_received.clear();
        return size;
    }

private:
    boost::asio::io_context m_context;
    boost::asio::ip::tcp::socket m_socket;
    std::string m_received;
};
