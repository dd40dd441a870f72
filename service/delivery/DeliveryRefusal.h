#pragma once

#include <stdexcept>
#include <string>

namespace monitorservice {

/// Why a delivery is not taken in. The message is for the client and names the element.
class DeliveryRefusal : public std::runtime_error
{
public:
    enum class Reason
    {
        Malformed, ///< what was sent is wrong
        Forbidden  ///< the sender lacks a right
    };

    explicit DeliveryRefusal(const std::string& message, Reason reason = Reason::Malformed)
        : std::runtime_error(message), m_reason(reason)
    {
    }

    Reason reason() const noexcept { return m_reason; }

private:
    Reason m_reason;
};

} // namespace monitorservice
