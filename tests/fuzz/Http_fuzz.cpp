// Input: what a client sends on one connection. The session must answer the same however the bytes are cut,
// and a handler must see no request but those that a lenient reader of HTTP/1.1 sees too: where two readers
// could cut the bytes differently, one request could be hidden in another.

#include "Fuzzer.h"
#include "http/HttpSession.h"

#include <boost/asio/executor_work_guard.hpp>
#include <simdjson.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {
namespace {

using fuzz::require;
namespace asio = boost::asio;

constexpr std::size_t longestInput = 8 * 1024;

struct Seen
{
    std::string method;
    std::string target;
    std::string body;

    bool operator==(const Seen& other) const
    {
        return method == other.method && target == other.target && body == other.body;
    }
};

HttpLimits limits()
{
    HttpLimits limits;
    limits.largestHeader = 1024; // within reach of an input
    limits.mostFields = 10;
    limits.longestTarget = 256;
    limits.largestBody = 1024;
    limits.readerThreads = limits.writerThreads = 1;
    return limits;
}

// What came of one connection.
struct Exchange
{
    std::vector<Seen> seen;
    std::string answers;
};

// A socket pair's end that the client holds.
class ClientEnd
{
public:
    explicit ClientEnd(int descriptor) : m_descriptor(descriptor) {}
    ~ClientEnd() { ::close(m_descriptor); }
    ClientEnd(const ClientEnd&) = delete;
    ClientEnd& operator=(const ClientEnd&) = delete;

    void send(std::string_view bytes) const
    {
        // Fails when the session has closed already, which it may.
        (void)!::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    void endSending() const { ::shutdown(m_descriptor, SHUT_WR); }
    void receive(std::string& received) const
    {
        std::array<char, 16'384> bytes;
        ssize_t size = 0;
        while ((size = ::recv(m_descriptor, bytes.data(), bytes.size(), MSG_DONTWAIT)) > 0) {
            received.append(bytes.data(), static_cast<std::size_t>(size));
        }
    }

private:
    int m_descriptor;
};

// The sessions of a server without the server: one connection at a time, driven from here.
class Driver
{
public:
    Driver()
        : m_sessions(
              limits(), [this](HttpRequest&& request) { return answer(std::move(request)); },
              std::make_shared<HttpCounters>())
    {
    }

    // Sends the bytes in two parts, cut at a place.
    Exchange exchange(std::string_view bytes, std::size_t cut)
    {
        m_exchange = {};
        std::array<int, 2> pair{};
        require(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()) == 0, "there is a socket pair");
        const ClientEnd client(pair[0]);
        asio::ip::tcp::socket socket(m_sessions.io);
        socket.assign(asio::ip::tcp::v4(), pair[1]);
        std::make_shared<HttpSession>(m_sessions, std::move(socket))->start();

        client.send(bytes.substr(0, cut));
        m_sessions.io.poll();
        client.receive(m_exchange.answers);
        client.send(bytes.substr(cut));
        client.endSending();
        while (m_sessions.counters->openConnections > 0) {
            m_sessions.io.run_one();
            client.receive(m_exchange.answers);
        }
        client.receive(m_exchange.answers);
        require(m_sessions.counters->bodyBytes == 0 && m_sessions.counters->requestsInProgress == 0,
                "nothing is held for a connection that has gone");
        return std::move(m_exchange);
    }

private:
    HttpResponse answer(HttpRequest&& request)
    {
        for (const std::string& segment : request.path) {
            require(isText(segment), "a segment of the path is text");
        }
        for (const auto& [name, value] : request.parameters) {
            require(isText(name) && isText(value), "a parameter is text");
        }
        HttpResponse response;
        response.body = request.target;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_exchange.seen.push_back({request.method, request.target, std::move(request.body)});
        return response;
    }

    static bool isText(const std::string& text)
    {
        return simdjson::validate_utf8(text) && text.find('\0') == std::string::npos;
    }

    std::mutex m_mutex;
    Exchange m_exchange;
    HttpSessions m_sessions;
    asio::executor_work_guard<asio::io_context::executor_type> m_work{m_sessions.io.get_executor()};
};

// Reads requests as a forgiving proxy might: lines may end in LF alone, blanks may stand anywhere around
// names and values, and the last of repeated fields counts.
class LenientReader
{
public:
    explicit LenientReader(std::string_view bytes) : m_rest(bytes) {}

    std::optional<Seen> next()
    {
        std::optional<std::string_view> line = takeLine();
        while (line && line->empty()) {
            line = takeLine();
        }
        if (!line) {
            return std::nullopt;
        }
        Seen seen;
        const std::size_t methodEnd = line->find(' ');
        const std::size_t targetEnd = line->rfind(' ');
        if (methodEnd == std::string_view::npos || targetEnd == methodEnd) {
            return std::nullopt;
        }
        seen.method = line->substr(0, methodEnd);
        seen.target = line->substr(methodEnd + 1, targetEnd - methodEnd - 1);
        if (seen.method == "HEAD") {
            seen.method = "GET";
        }
        return readFields() && readBody(seen.body) ? std::optional(seen) : std::nullopt;
    }

private:
    std::optional<std::string_view> takeLine()
    {
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::string_view line = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        return line;
    }

    static std::string lowered(std::string_view text)
    {
        std::string result;
        for (const char c : text) {
            if (!std::isspace(static_cast<unsigned char>(c))) {
                result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
        }
        return result;
    }

    bool readFields()
    {
        m_length.clear();
        m_isChunked = false;
        for (auto line = takeLine(); line; line = takeLine()) {
            if (line->empty()) {
                return true;
            }
            const std::size_t colon = std::min(line->find(':'), line->size());
            const std::string name = lowered(line->substr(0, colon));
            const std::string value = lowered(line->substr(std::min(colon + 1, line->size())));
            if (name == "content-length") {
                m_length = value;
            }
            if (name == "transfer-encoding") {
                m_isChunked = m_isChunked || value.find("chunked") != std::string::npos;
            }
        }
        return false;
    }

    bool readBody(std::string& body)
    {
        if (!m_isChunked) {
            return take(m_length.empty() ? 0 : std::strtoull(m_length.c_str(), nullptr, 10), body);
        }
        for (;;) {
            const std::optional<std::string_view> line = takeLine();
            if (!line) {
                return false;
            }
            const std::size_t size = std::strtoull(std::string(*line).c_str(), nullptr, 16);
            if (size == 0) {
                return skipTrailer();
            }
            std::string lineEnd;
            if (!take(size, body) || !take(m_rest.substr(0, 1) == "\r" ? 2 : 1, lineEnd)) {
                return false;
            }
        }
    }

    bool skipTrailer()
    {
        for (auto line = takeLine(); line; line = takeLine()) {
            if (line->empty()) {
                return true;
            }
        }
        return false;
    }

    bool take(std::size_t size, std::string& bytes)
    {
        if (size > m_rest.size()) {
            return false;
        }
        bytes += m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return true;
    }

    std::string_view m_rest;
    std::string m_length;
    bool m_isChunked = false;
};

void checkFraming(std::string_view bytes, const std::vector<Seen>& seen)
{
    LenientReader reader(bytes);
    for (const Seen& request : seen) {
        const std::optional<Seen> other = reader.next();
        require(other && *other == request, "both readers see the same requests",
                [&] { return request.method + " " + request.target + "\n" + request.body; });
    }
}

void eraseAll(std::string& text, std::string_view begin, std::string_view end)
{
    for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
        const std::size_t stop = text.find(end, at);
        text.erase(at, stop == std::string::npos ? stop : stop + end.size() - at);
    }
}

// The answers without what may differ: the time, and whether a client was told to go on.
std::string comparable(std::string answers)
{
    eraseAll(answers, "HTTP/1.1 100 ", "\r\n\r\n");
    eraseAll(answers, "Date: ", "\r\n");
    return answers;
}

// Each request seen has its answer; at most one more, a refusal, ends the connection.
void checkAnswers(const Exchange& exchange)
{
    std::string answers = comparable(exchange.answers);
    std::size_t count = 0;
    while (!answers.empty()) {
        require(answers.rfind("HTTP/1.1 ", 0) == 0, "an answer begins with its status",
                [&] { return answers; });
        const std::size_t headEnd = answers.find("\r\n\r\n");
        require(headEnd != std::string::npos, "an answer's header is whole", [&] { return answers; });
        const std::string head = answers.substr(0, headEnd + 2);
        const std::size_t lengthAt = head.find("\r\nContent-Length: ");
        require(lengthAt != std::string::npos, "an answer has a length", [&] { return head; });
        const std::size_t length = std::stoul(head.substr(lengthAt + 18));
        const bool isAnswer = count < exchange.seen.size();
        require(isAnswer ? head.rfind("HTTP/1.1 200", 0) == 0 : head[9] == '4' || head[9] == '5',
                "what no handler saw is refused", [&] { return head; });
        answers.erase(0, headEnd + 4);
        // The answer to a HEAD has no body; what it would be, the target, begins otherwise than an answer.
        if (answers.rfind("HTTP/1.1 ", 0) != 0) {
            answers.erase(0, length);
        }
        ++count;
    }
    require(count == exchange.seen.size() || count == exchange.seen.size() + 1,
            "each request has one answer, and one refusal may follow");
}

void tryInput(std::string_view bytes)
{
    static Driver driver;
    if (bytes.size() > longestInput) {
        return;
    }
    const Exchange whole = driver.exchange(bytes, 0);
    checkFraming(bytes, whole.seen);
    checkAnswers(whole);
    // The place follows from the input, so that a finding can be repeated.
    std::size_t hash = bytes.size();
    for (const char c : bytes) {
        hash = hash * 31 + static_cast<unsigned char>(c);
    }
    const Exchange cut = driver.exchange(bytes, bytes.empty() ? 0 : hash % bytes.size());
    require(cut.seen == whole.seen && comparable(cut.answers) == comparable(whole.answers),
            "the bytes are answered the same however they are cut",
            [&] { return cut.answers + "\n----\n" + whole.answers; });
}

} // namespace
} // namespace monitorservice

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    monitorservice::tryInput({reinterpret_cast<const char*>(data), size});
    return 0;
}
