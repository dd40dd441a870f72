#pragma once

#include "RawClient.h"
#include "http/HttpServer.h"

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace monitorservice::test {

/// Answers with what it was asked: one line each for method, target and authorization, then the body.
inline HttpResponse echo(HttpRequest&& request)
{
    HttpResponse response;
    response.contentType = "text/plain";
    response.body = request.method + "\n" + request.target + "\n" + request.authorization.value_or("none") +
                    "\n" + request.body;
    return response;
}

inline std::string echoed(const std::string& method, const std::string& target, const std::string& body = {})
{
    return method + "\n" + target + "\nnone\n" + body;
}

/// A server on a free port of 127.0.0.1.
inline HttpServer serve(const HttpLimits& limits = {}, HttpHandler handler = echo)
{
    return HttpServer(ListenAddress{}, limits, std::move(handler));
}

inline std::string get(const std::string& target, const std::string& fields = {})
{
    return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\n" + fields + "\r\n";
}

inline std::string post(const std::string& target, const std::string& body, const std::string& fields = {})
{
    return "POST " + target +
           " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           fields + "\r\n" + body;
}

inline std::string postChunked(const std::string& target, const std::string& chunks)
{
    return "POST " + target + " HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks;
}

/// Sends the bytes on a connection of their own and reads one answer.
inline RawAnswer ask(const HttpServer& server, std::string_view bytes)
{
    RawClient client(server.port());
    client.send(bytes);
    return client.readAnswer();
}

/// Waits until the condition holds, for as long as the test runner lets the test run.
inline void waitUntil(const std::function<bool()>& condition)
{
    while (!condition()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

} // namespace monitorservice::test
