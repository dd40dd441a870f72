#pragma once

#include <stdexcept>
#include <string>

namespace monitorservice {

/// A request that is answered with an error before any handler sees it; what() is the answer's message.
class RefusedRequest : public std::runtime_error
{
public:
    RefusedRequest(unsigned status, const std::string& message)
        : std::runtime_error(message), m_status(status)
    {
    }

    unsigned status() const { return m_status; }

private:
    unsigned m_status;
};

} // namespace monitorservice
