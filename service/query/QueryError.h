#pragma once

#include <stdexcept>
#include <string>

namespace monitorservice {

/// A query that cannot be answered, with the HTTP status to answer instead.
///
/// 400: the query is malformed (RFC 9110 section 15.5.1). 422: it is well formed, but one of its patterns
/// takes too many steps (RFC 9110 section 15.5.21). The message names what is wrong and where, and is meant
/// for the caller of the service.
class QueryError : public std::runtime_error
{
public:
    QueryError(int status, const std::string& message) : std::runtime_error(message), m_status(status) {}

    int status() const noexcept { return m_status; }

private:
    int m_status;
};

} // namespace monitorservice
