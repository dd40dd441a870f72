#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace monitorservice {

/// One request whose framing, header and target have been checked.
struct HttpRequest
{
    /// As sent, case kept; a HEAD arrives as "GET", its answer leaves without the body. Never TRACE or
    /// CONNECT.
    std::string method;
    /// Path and query as sent, percent-encoding included; visible ASCII only.
    std::string target;
    /// The path's segments, percent-decoded, in order. Nothing is collapsed: "/a//b/" is {"a", "", "b", ""},
    /// "." and ".." stand as they are, and a segment may contain "/" when it was sent as %2F. Valid UTF-8
    /// without NUL.
    std::vector<std::string> path;
    /// Names and values of the query, percent-decoded, in order, duplicates kept; "+" is a plus. Valid UTF-8
    /// without NUL.
    std::vector<std::pair<std::string, std::string>> parameters;
    /// The Authorization field; nullopt when absent.
    std::optional<std::string> authorization;
    /// The Content-Type field; empty when absent.
    std::string contentType;
    std::string body;
    /// The IP address at the other end of the connection: that of a proxy, if there is one before the
    /// service.
    std::string address;
};

/// What a handler answers. The length, the date and the connection's fate are added when it is sent.
struct HttpResponse
{
    unsigned status = 200; ///< 200 to 599; 204 and 304 leave without a body
    std::string body;
    std::string contentType = "application/json; charset=utf-8"; ///< not sent when empty
    /// Any but Connection, Content-Length, Content-Type, Date and Transfer-Encoding, which the server writes.
    std::vector<std::pair<std::string, std::string>> headers;
    /// Who was answered, for the log; empty when that is not known. Not sent.
    std::string caller;
};

/// Answers one request. It runs on a worker thread, several at a time, so it must be safe to call
/// concurrently; what it throws is answered 500 and logged. It must not wait for the server to stop.
using HttpHandler = std::function<HttpResponse(HttpRequest&&)>;

/// The service's error answer: {"message": ..., "status": ...} with that status; 503 carries "Retry-After:
/// 1". The message is valid UTF-8.
HttpResponse errorResponse(unsigned status, std::string_view message);

} // namespace monitorservice
