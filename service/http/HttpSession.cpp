#include "http/HttpSession.h"

#include "http/HttpDate.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/write.hpp>

#include <algorithm>
#include <iostream>

namespace monitorservice {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;

namespace {

constexpr std::size_t smallestRead = 2 * 1024;
constexpr std::size_t largestRead = 64 * 1024;
// A chunk's line with its extensions, or the trailer fields after the last chunk.
constexpr std::size_t longestChunkLine = 16 * 1024;

std::string_view textOf(const boost::beast::flat_buffer& buffer)
{
    return {static_cast<const char*>(buffer.data().data()), buffer.size()};
}

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Of control characters the extensions of a chunk may hold a tab alone (RFC 9112, 7.1.1). Beast lets any
// stand in quotes; another reader might take a line feed there for the line's end, and see other requests.
void checkChunkExtensions(std::uint64_t /*size*/, boost::beast::string_view extensions, error_code& error)
{
    if (std::any_of(extensions.begin(), extensions.end(), [](char c) { return isControl(c) && c != '\t'; })) {
        error = http::error::bad_chunk_extension;
    }
}

// One line of the log, whatever bytes a message has.
void logFailure(const std::string& method, std::string_view target, std::string_view reason)
{
    // The query is left out: what was asked for is no business of a log.
    std::string line =
        "http: " + method + " " + std::string(target.substr(0, target.find('?'))) + " failed: ";
    line += reason;
    std::replace_if(line.begin(), line.end(), isControl, '?');
    std::cerr << line + "\n" << std::flush;
}

std::string addressOf(const asio::ip::tcp::socket& socket)
{
    error_code error;
    const asio::ip::tcp::endpoint other = socket.remote_endpoint(error);
    return error ? std::string() : other.address().to_string();
}

bool isSendable(std::string_view text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

// A handler's answer that would break the framing becomes a 500.
HttpResponse checked(HttpResponse&& response, const RequestHead& head)
{
    const bool isSound =
        response.status >= 200 && response.status <= 599 && isSendable(response.contentType) &&
        std::all_of(response.headers.begin(), response.headers.end(), [](const auto& header) {
            return !header.first.empty() && isSendable(header.first) && isSendable(header.second);
        });
    if (isSound) {
        return std::move(response);
    }
    logFailure(head.method, head.target, "its answer has a bad status or header");
    return errorResponse(500, "internal error");
}

// What a header that does not end within its limit is refused with.
RefusedRequest tooLarge(std::string_view head)
{
    const std::string limit = " than " + std::to_string(head.size()) + " bytes";
    if (head.find('\n') == std::string_view::npos) {
        return {414, "the address is longer" + limit};
    }
    return {431, "the header is larger" + limit};
}

} // namespace

const std::string& HttpSessions::currentDate()
{
    const std::time_t now = std::time(nullptr);
    if (now != m_dateSecond) {
        m_dateSecond = now;
        m_date = httpDate(now);
    }
    return m_date;
}

HttpSession::HttpSession(HttpSessions& sessions, asio::ip::tcp::socket socket)
    : m_sessions(sessions), m_socket(std::move(socket)), m_address(addressOf(m_socket))
{
    m_sessions.open.insert(this);
    ++m_sessions.counters->connections;
    ++m_sessions.counters->openConnections;
    error_code ignored;
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
}

HttpSession::~HttpSession()
{
    releaseBody();
    --m_sessions.counters->openConnections;
    m_sessions.open.erase(this);
    if (m_sessions.isStopping && m_sessions.open.empty() && m_sessions.onDrained) {
        m_sessions.onDrained();
    }
}

void HttpSession::start()
{
    awaitRequest();
}

void HttpSession::refuse(const RefusedRequest& refusal)
{
    m_head.isKeptAlive = false;
    respond(errorResponse(refusal.status(), refusal.what()));
}

void HttpSession::enter(Phase phase, std::chrono::milliseconds deadline)
{
    m_phase = phase;
    m_deadline = Clock::now() + deadline;
    m_bytesMoved = 0;
    m_bytesMovedEarlier = 0;
}

bool HttpSession::hasProgressed()
{
    const bool isEnough = m_bytesMoved - m_bytesMovedEarlier >= m_sessions.limits.leastProgress;
    m_bytesMovedEarlier = m_bytesMoved;
    return isEnough;
}

void HttpSession::checkDeadline(Clock::time_point now)
{
    if (m_phase == Phase::Handling || now < m_deadline) {
        return;
    }
    const bool mayGoOn =
        (m_phase == Phase::Writing || (m_phase == Phase::Body && now < m_bodyDeadline)) && hasProgressed();
    if (mayGoOn) {
        m_deadline = now + m_sessions.limits.progressDeadline;
        return;
    }
    error_code ignored;
    if (m_phase == Phase::Header || m_phase == Phase::Body) {
        m_isOverdue = true;
        m_socket.cancel(ignored);
        return;
    }
    // What a client does not take is dropped rather than left to the system, which would hold it for minutes.
    if (m_phase == Phase::Writing) {
        m_socket.set_option(asio::socket_base::linger(true, 0), ignored);
    }
    close();
}

void HttpSession::closeIfIdle()
{
    if (m_phase == Phase::Idle) {
        close();
    }
}

void HttpSession::close()
{
    error_code ignored;
    m_socket.close(ignored);
}

void HttpSession::readMore(Continuation continuation)
{
    const std::size_t size =
        m_phase == Phase::Body ? largestRead : std::clamp(m_buffer.size(), smallestRead, largestRead);
    m_socket.async_read_some(m_buffer.prepare(size), [self = shared_from_this(), continuation](
                                                         const error_code& error, std::size_t received) {
        self->received(error, received, continuation);
    });
}

void HttpSession::received(const error_code& error, std::size_t size, Continuation continuation)
{
    if (m_isOverdue) {
        return refuse(RefusedRequest(408, "the request did not arrive in time"));
    }
    // A client that has closed its side in the middle of a request may still read what was wrong.
    if (error == asio::error::eof && (m_phase == Phase::Header || m_phase == Phase::Body)) {
        return refuse(RefusedRequest(400, "the request ends before it is complete"));
    }
    if (error) {
        return close();
    }
    m_buffer.commit(size);
    m_bytesMoved += size;
    if (m_phase == Phase::Idle) {
        enter(Phase::Header, m_sessions.limits.headerDeadline);
    }
    (this->*continuation)();
}

void HttpSession::awaitRequest()
{
    m_headExamined = 0;
    m_head = {};
    m_target = {};
    if (m_buffer.size() > 0) {
        enter(Phase::Header, m_sessions.limits.headerDeadline);
        return readHead();
    }
    if (m_sessions.isStopping) {
        return linger();
    }
    if (m_buffer.capacity() > smallestRead) {
        m_buffer.shrink_to_fit();
    }
    enter(Phase::Idle, m_sessions.limits.idleDeadline);
    readMore(&HttpSession::readHead);
}

void HttpSession::readHead()
{
    // An empty line before a request is what some clients send after a body (RFC 9112, section 2.2).
    while (textOf(m_buffer).substr(0, 2) == "\r\n") {
        m_buffer.consume(2);
        if (m_buffer.size() == 0) {
            return awaitRequest();
        }
    }
    if (textOf(m_buffer) == "\r") {
        return readMore(&HttpSession::readHead);
    }
    try {
        // What lies beyond the limit is not looked at: how much of it has arrived is chance, and the answer
        // must not be.
        const std::size_t largest = m_sessions.limits.largestHeader;
        const std::string_view text = textOf(m_buffer).substr(0, largest);
        const std::optional<std::size_t> end = findHeadEnd(text, m_headExamined);
        if (!end && text.size() == largest) {
            throw tooLarge(text);
        }
        if (!end) {
            return readMore(&HttpSession::readHead);
        }
        takeHead(text.substr(0, *end));
    } catch (const RefusedRequest& refusal) {
        return refuse(refusal);
    }
    beginBody();
}

void HttpSession::takeHead(std::string_view text)
{
    m_head = parseRequestHead(text, m_sessions.limits);
    m_target = parseRequestTarget(m_head.target);

    m_parser.emplace();
    m_parser->on_chunk_header(checkChunkExtensions);
    m_parser->header_limit(static_cast<std::uint32_t>(text.size()) + 1);
    m_parser->body_limit(m_sessions.limits.largestBody);
    error_code error;
    const std::size_t size = m_parser->put(asio::const_buffer(text.data(), text.size()), error);
    if (error || size != text.size() || !m_parser->is_header_done()) {
        throw RefusedRequest(400, "the header is malformed");
    }
    m_buffer.consume(size);
}

void HttpSession::beginBody()
{
    enter(Phase::Body, m_sessions.limits.progressDeadline);
    m_bodyDeadline = Clock::now() + m_sessions.limits.bodyDeadline;
    m_deadline = std::min(m_deadline, m_bodyDeadline);
    // A client that has begun to send its body does not wait to be told to.
    if (m_head.expectsContinue && !m_parser->is_done() && m_buffer.size() == 0) {
        return sendContinue();
    }
    readBody();
}

void HttpSession::sendContinue()
{
    static constexpr std::string_view interim = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(m_socket, asio::const_buffer(interim.data(), interim.size()),
                      [self = shared_from_this()](const error_code& error, std::size_t /*size*/) {
                          self->received(error, 0, &HttpSession::readBody);
                      });
}

void HttpSession::readBody()
{
    try {
        takeBody();
        chargeBody();
    } catch (const RefusedRequest& refusal) {
        m_parser.reset();
        releaseBody();
        return refuse(refusal);
    }
    if (m_parser->is_done()) {
        return handle();
    }
    readMore(&HttpSession::readBody);
}

void HttpSession::takeBody()
{
    while (!m_parser->is_done() && m_buffer.size() > 0) {
        error_code error;
        m_buffer.consume(m_parser->put(asio::const_buffer(m_buffer.data()), error));
        if (error == http::error::need_more) {
            break;
        }
        if (error == http::error::body_limit) {
            throw RefusedRequest(413, "the body is larger than " +
                                          std::to_string(m_sessions.limits.largestBody) + " bytes");
        }
        if (error) {
            throw RefusedRequest(400, "the body's chunks are malformed");
        }
    }
    if (!m_parser->is_done() && m_buffer.size() > longestChunkLine) {
        throw RefusedRequest(400, "a chunk's extensions or the trailer fields are too long");
    }
}

void HttpSession::chargeBody()
{
    const std::size_t size = m_parser->get().body().size();
    m_sessions.counters->bodyBytes += size - m_bodyCharge;
    m_bodyCharge = size;
    if (m_sessions.counters->bodyBytes > m_sessions.limits.largestBodiesTogether) {
        throw RefusedRequest(503, "the service is receiving too many large bodies");
    }
}

void HttpSession::releaseBody()
{
    m_sessions.counters->bodyBytes -= m_bodyCharge;
    m_bodyCharge = 0;
}

void HttpSession::handle()
{
    HttpRequest request;
    request.method = m_head.method == "HEAD" ? "GET" : m_head.method;
    request.target = m_head.target;
    request.path = std::move(m_target.path);
    request.parameters = std::move(m_target.parameters);
    request.authorization = std::move(m_head.authorization);
    request.contentType = std::move(m_head.contentType);
    request.body = std::move(m_parser->get().body());
    request.address = m_address;
    m_parser.reset();

    const Clock::time_point received = Clock::now();
    m_phase = Phase::Handling;
    ++m_sessions.counters->requests;
    ++m_sessions.counters->requestsInProgress;
    asio::thread_pool& workers = request.method == "GET" ? m_sessions.readers : m_sessions.writers;
    asio::post(workers, [self = shared_from_this(), request = std::move(request), received]() mutable {
        HttpResponse response = Clock::now() - received > self->m_sessions.limits.queueDeadline
                                    ? errorResponse(503, "the service has too much to do; try again")
                                    : self->callHandler(std::move(request));
        // The session is handed back whole: its last owner must be the thread that moves bytes.
        HttpSessions& sessions = self->m_sessions;
        asio::post(sessions.io, [self = std::move(self), response = std::move(response)]() mutable {
            --self->m_sessions.counters->requestsInProgress;
            self->releaseBody();
            self->respond(std::move(response));
        });
    });
}

HttpResponse HttpSession::callHandler(HttpRequest&& request) const
{
    try {
        return checked(m_sessions.handler(std::move(request)), m_head);
    } catch (const std::exception& failure) {
        logFailure(m_head.method, m_head.target, failure.what());
    } catch (...) {
        logFailure(m_head.method, m_head.target, "an exception of unknown type");
    }
    return errorResponse(500, "internal error");
}

void HttpSession::respond(HttpResponse&& response)
{
    if (!m_socket.is_open()) {
        return;
    }
    ++m_sessions.counters->answers.at(response.status / 100);
    const bool hasBody = response.status != 204 && response.status != 304;
    m_head.isKeptAlive = m_head.isKeptAlive && !m_sessions.isStopping;

    m_response.emplace(static_cast<http::status>(response.status), 11);
    m_response->set(http::field::date, m_sessions.currentDate());
    if (hasBody) {
        if (!response.contentType.empty()) {
            m_response->set(http::field::content_type, response.contentType);
        }
        m_response->content_length(response.body.size());
        if (m_head.method != "HEAD") {
            m_response->body() = std::move(response.body);
        }
    }
    for (const auto& [name, value] : response.headers) {
        m_response->insert(name, value);
    }
    m_response->keep_alive(m_head.isKeptAlive);
    m_serializer.emplace(*m_response);
    enter(Phase::Writing, m_sessions.limits.progressDeadline);
    writeMore();
}

void HttpSession::writeMore()
{
    http::async_write_some(m_socket, *m_serializer,
                           [self = shared_from_this()](const error_code& error, std::size_t size) {
                               self->written(error, size);
                           });
}

void HttpSession::written(const error_code& error, std::size_t size)
{
    if (error) {
        return close();
    }
    m_bytesMoved += size;
    if (!m_serializer->is_done()) {
        return writeMore();
    }
    m_serializer.reset();
    m_response.reset();
    if (m_head.isKeptAlive) {
        awaitRequest();
    } else {
        linger();
    }
}

// Closes without losing the answer: were the socket closed while bytes of the client are unread, the system
// would reset the connection and the client might never see what was sent (RFC 9112, section 9.6).
void HttpSession::linger()
{
    error_code error;
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_send, error);
    if (error) {
        return close();
    }
    m_isOverdue = false;
    enter(Phase::Lingering, m_sessions.limits.lingerDeadline);
    discard();
}

void HttpSession::discard()
{
    m_buffer.consume(m_buffer.size());
    readMore(&HttpSession::discard);
}

} // namespace monitorservice
