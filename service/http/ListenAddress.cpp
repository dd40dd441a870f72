#include "http/ListenAddress.h"

#include <boost/asio/ip/address.hpp>

#include <charconv>
#include <stdexcept>

namespace monitorservice {

namespace {

[[noreturn]] void refuse(std::string_view text, const std::string& reason)
{
    throw std::invalid_argument("cannot listen on \"" + std::string(text) + "\": " + reason);
}

} // namespace

ListenAddress parseListenAddress(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        refuse(text, "the port is missing, write ADDRESS:PORT");
    }
    std::string_view host = text.substr(0, colon);
    const std::string_view digits = text.substr(colon + 1);

    ListenAddress address;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size()) {
        refuse(text, "the port is not a number from 0 to 65535");
    }

    const bool isBracketed = host.size() >= 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed) {
        host = host.substr(1, host.size() - 2);
    }
    address.host = host;
    boost::system::error_code ignored;
    const boost::asio::ip::address ip = boost::asio::ip::make_address(address.host, ignored);
    if (ignored) {
        refuse(text, "not an IP address and port, such as 127.0.0.1:8080 or [::1]:8080");
    }
    if (ip.is_v6() != isBracketed) {
        refuse(text, "an IPv6 address, and no other, stands in brackets");
    }
    return address;
}

std::string toText(const ListenAddress& address)
{
    const bool isIPv6 = address.host.find(':') != std::string::npos;
    return (isIPv6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

} // namespace monitorservice
