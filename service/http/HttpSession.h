#pragma once

// Internal to this folder: the one header that names Asio and Beast.

#include "http/HttpServer.h"
#include "http/RefusedRequest.h"
#include "http/RequestHead.h"
#include "http/RequestTarget.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core/buffers_range.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/string_body.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>

namespace monitorservice {

class HttpSession;

/// What all sessions of one server share. Members but io, readers, writers and counters belong to the thread
/// that runs io.
struct HttpSessions
{
    HttpSessions(const HttpLimits& theLimits, HttpHandler theHandler,
                 std::shared_ptr<HttpCounters> theCounters)
        : limits(theLimits), handler(std::move(theHandler)), counters(std::move(theCounters)),
          readers(std::max<std::size_t>(theLimits.readerThreads, 1)),
          writers(std::max<std::size_t>(theLimits.writerThreads, 1))
    {
    }

    HttpLimits limits;
    HttpHandler handler;
    std::shared_ptr<HttpCounters> counters;
    std::unordered_set<HttpSession*> open;
    bool isStopping = false;
    /// Called when the last session has gone while stopping.
    std::function<void()> onDrained;
    boost::asio::io_context io{1};
    boost::asio::thread_pool readers; ///< call the handler for GET
    boost::asio::thread_pool writers; ///< call it for all other methods

    /// The Date field's value, made once a second.
    const std::string& currentDate();

private:
    std::time_t m_dateSecond = 0;
    std::string m_date;
};

/// A body that grows as its bytes arrive: memory is never taken on the word of a Content-Length.
struct GrowingBody
{
    using value_type = std::string;

    class reader
    {
    public:
        template <bool isRequest, typename Fields>
        reader(boost::beast::http::header<isRequest, Fields>& /*header*/, value_type& body) : m_body(body)
        {
        }

        void init(const boost::optional<std::uint64_t>& /*length*/, boost::system::error_code& error)
        {
            error = {};
        }

        template <typename Buffers>
        std::size_t put(const Buffers& buffers, boost::system::error_code& error)
        {
            error = {};
            std::size_t size = 0;
            for (const boost::asio::const_buffer buffer : boost::beast::buffers_range_ref(buffers)) {
                m_body.append(static_cast<const char*>(buffer.data()), buffer.size());
                size += buffer.size();
            }
            return size;
        }

        void finish(boost::system::error_code& error) { error = {}; }

    private:
        value_type& m_body;
    };
};

/// One connection. It lives as long as something is under way on it, and holds no buffer while it is idle.
/// Requests are taken one after the other, so pipelined ones are answered in order.
class HttpSession : public std::enable_shared_from_this<HttpSession>
{
public:
    using Clock = std::chrono::steady_clock;

    HttpSession(HttpSessions& sessions, boost::asio::ip::tcp::socket socket);
    ~HttpSession();
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    /// Waits for requests.
    void start();
    /// Answers this instead of reading a request, and closes.
    void refuse(const RefusedRequest& refusal);
    /// Ends what is overdue; called at short intervals.
    void checkDeadline(Clock::time_point now);
    /// Closes the connection if no request has begun.
    void closeIfIdle();
    void close();

private:
    enum class Phase
    {
        Idle,
        Header,
        Body,
        Handling,
        Writing,
        Lingering
    };
    using Continuation = void (HttpSession::*)();

    void enter(Phase phase, std::chrono::milliseconds deadline);
    void readMore(Continuation continuation);
    void received(const boost::system::error_code& error, std::size_t size, Continuation continuation);
    void awaitRequest();
    void readHead();
    void takeHead(std::string_view text);
    void beginBody();
    void sendContinue();
    void readBody();
    void takeBody();
    void chargeBody();
    void releaseBody();
    void handle();
    HttpResponse callHandler(HttpRequest&& request) const;
    void respond(HttpResponse&& response);
    void writeMore();
    void written(const boost::system::error_code& error, std::size_t size);
    void linger();
    void discard();
    bool hasProgressed();

    HttpSessions& m_sessions;
    boost::asio::ip::tcp::socket m_socket;
    std::string m_address; ///< at the other end; asked for once, as it costs a call of the system
    boost::beast::flat_buffer m_buffer;
    Phase m_phase = Phase::Idle;
    Clock::time_point m_deadline;
    Clock::time_point m_bodyDeadline;
    bool m_isOverdue = false;
    std::uint64_t m_bytesMoved = 0;        ///< in the present phase
    std::uint64_t m_bytesMovedEarlier = 0; ///< of these, when progress was last asked for
    std::size_t m_headExamined = 0;
    std::size_t m_bodyCharge = 0;
    RequestHead m_head;
    RequestTarget m_target;
    std::optional<boost::beast::http::request_parser<GrowingBody>> m_parser;
    std::optional<boost::beast::http::response<boost::beast::http::string_body>> m_response;
    std::optional<boost::beast::http::response_serializer<boost::beast::http::string_body>> m_serializer;
};

} // namespace monitorservice
