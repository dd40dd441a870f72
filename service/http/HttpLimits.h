#pragma once

#include <chrono>
#include <cstddef>

namespace monitorservice {

/// What one client may ask of the server, in bytes and time. docs/http.md says what is answered beyond each.
struct HttpLimits
{
    /// Request line and fields with the empty line that ends them. Beyond: 431.
    std::size_t largestHeader = 64 * 1024;
    /// Fields in one header. Beyond: 431.
    std::size_t mostFields = 100;
    /// Path and query as sent; a where document of 8 KB takes up to 24 KB percent-encoded. Beyond: 414.
    std::size_t longestTarget = 32 * 1024;
    /// One body, after its chunks are joined. Beyond: 413.
    std::size_t largestBody = 64 * 1024 * 1024;
    /// All bodies that are being received or handled. Beyond: 503 with Retry-After.
    std::size_t largestBodiesTogether = 512 * 1024 * 1024;
    /// Open connections, idle ones included; lowered to what the process may open. Beyond: 503 with
    /// Retry-After.
    std::size_t mostConnections = 4096;
    /// Handlers of requests that only read (GET, HEAD) that run at a time.
    std::size_t readerThreads = 8;
    /// Handlers of other requests that run at a time. They may wait for one another; reads do not wait for
    /// them.
    std::size_t writerThreads = 4;

    /// From the connection's opening or the last answer to the next request's first byte.
    std::chrono::milliseconds idleDeadline{60'000};
    /// From a request's first byte to the end of its header.
    std::chrono::milliseconds headerDeadline{10'000};
    /// From the end of the header to the end of the body.
    std::chrono::milliseconds bodyDeadline{600'000};
    /// The time in which at least leastProgress bytes of a body must arrive, or of an answer be taken.
    std::chrono::milliseconds progressDeadline{30'000};
    std::size_t leastProgress = 64 * 1024;
    /// From a request's end until a thread is free for its handler. Beyond: 503 with Retry-After.
    std::chrono::milliseconds queueDeadline{10'000};
    /// From the last answer on a connection until it is closed though the client has not closed its side.
    std::chrono::milliseconds lingerDeadline{2'000};
    /// From the call of stop() until connections are closed though their answers are not complete.
    std::chrono::milliseconds stopDeadline{10'000};
};

} // namespace monitorservice
