#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice {

/// A request that is answered with an error; the message is for the client.
class ApiError : public std::runtime_error
{
public:
    using Headers = std::vector<std::pair<std::string, std::string>>;

    ApiError(unsigned status, const std::string& message, Headers headers = {})
        : std::runtime_error(message), m_status(status), m_headers(std::move(headers))
    {
    }

    unsigned status() const noexcept { return m_status; }
    const Headers& headers() const noexcept { return m_headers; }

private:
    unsigned m_status;
    Headers m_headers;
};

/// The one answer for what does not exist and for what the caller may not read: the two cannot be told apart.
inline ApiError notFound(const std::string& kind, const std::string& id)
{
    return {404, "there is no " + kind + " \"" + id + "\""};
}

} // namespace monitorservice
