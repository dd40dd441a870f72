#include "HttpTransfer.h"

#include "ErrorTable.h"

#include <new>
#include <utility>

namespace rk {

namespace {

// Hands what libcurl has received to the reader; anything but the number of bytes ends the transfer.
template <bool (AnswerReader::*take)(const char*, qint64)>
size_t handOver(char* data, size_t size, size_t count, void* answerReader)
{
    auto* reader = static_cast<AnswerReader*>(answerReader);
    const size_t bytes = size * count;
    bool isTaken = false;
    try {
        isTaken = (reader->*take)(data, static_cast<qint64>(bytes));
    } catch (const std::bad_alloc&) { // must not pass through libcurl
        reader->note(AnswerReader::Defect::OutOfMemory);
    }
    return isTaken ? bytes : 0;
}

constexpr curl_write_callback onHeadLine = &handOver<&AnswerReader::takeHeadLine>;
constexpr curl_write_callback onBody = &handOver<&AnswerReader::takeBody>;

} // namespace

HttpTransfer::HttpTransfer(HttpRequest request, std::function<void()> whenFinished)
    : m_request(std::move(request)), m_whenFinished(std::move(whenFinished)),
      m_reader(m_request.maximumReplySize)
{
}

HttpTransfer& HttpTransfer::of(CURL* handle)
{
    char* transfer = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &transfer);
    return *static_cast<HttpTransfer*>(static_cast<void*>(transfer));
}

bool HttpTransfer::prepare(CurlEasy handle)
{
    m_easy = std::move(handle);
    CURL* easy = m_easy.get();
    if (!easy || !prepareHeaders()) {
        return false;
    }
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, m_errorText);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(easy, CURLOPT_TCP_NODELAY, 1L);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    // Otherwise aborting a request whose host is still being looked up waits for the answer.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    prepareCallbacks();
    prepareBody();
    prepareBounds();
    return curl_easy_setopt(easy, CURLOPT_URL, m_request.url.constData()) == CURLE_OK;
}

void HttpTransfer::prepareCallbacks()
{
    CURL* easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, &HttpTransfer::onSending);
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeadLine);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &m_reader);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &m_reader);
}

void HttpTransfer::prepareBody()
{
    CURL* easy = m_easy.get();
    if (!m_request.body.isEmpty()) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, m_request.body.constData()); // not copied
    }
    if (m_request.method != "GET") {
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, m_request.method.constData());
    }
    // A DELETE has no body whose loss would show; on a connection of its own it cannot meet one that the peer
    // is just closing, and so never fails for that reason alone.
    if (m_request.method == "DELETE") {
        curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
    }
}

void HttpTransfer::prepareBounds()
{
    CURL* easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(m_request.deadline.count()));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_request.connectTimeout.count()));
    if (!m_request.caFile.isEmpty()) {
        curl_easy_setopt(easy, CURLOPT_CAINFO, m_request.caFile.constData());
    }
    if (m_request.proxy == "direct") {
        curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
    } else if (!m_request.proxy.isEmpty()) {
        curl_easy_setopt(easy, CURLOPT_PROXY, m_request.proxy.constData());
    }
}

bool HttpTransfer::prepareHeaders()
{
    bool isComplete = addHeader("Accept: application/json") && addHeader("Accept-Encoding: gzip, deflate");
    // "Expect:" takes away libcurl's "Expect: 100-continue", which delays large bodies.
    if (!m_request.body.isEmpty()) {
        isComplete = isComplete && addHeader("Content-Type: application/json") && addHeader("Expect:");
    }
    for (const QByteArray& line : qAsConst(m_request.headerLines)) {
        isComplete = isComplete && addHeader(line.constData());
    }
    curl_easy_setopt(m_easy.get(), CURLOPT_HTTPHEADER, m_headerList.get());
    return isComplete;
}

bool HttpTransfer::addHeader(const char* line)
{
    curl_slist* longer = curl_slist_append(m_headerList.get(), line);
    if (!longer) {
        return false;
    }
    static_cast<void>(m_headerList.release()); // part of the longer list
    m_headerList.reset(longer);
    return true;
}

int HttpTransfer::onSending(void* transfer, char* /*peer*/, char* /*self*/, int /*peerPort*/,
                            int /*selfPort*/)
{
    auto* self = static_cast<HttpTransfer*>(transfer);
    const int timesAllowed = self->m_request.method == "GET" ? 2 : 1;
    self->m_isRepetitionRefused = ++self->m_timesSent > timesAllowed;
    return self->m_isRepetitionRefused ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

CurlEasy HttpTransfer::settle(CURLcode result)
{
    curl_off_t received = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
    m_reader.answer().bytesReceived = received;
    judge(result);
    return std::move(m_easy);
}

void HttpTransfer::judge(CURLcode result)
{
    if (m_isRepetitionRefused) {
        fail(QNetworkReply::RemoteHostClosedError,
             QStringLiteral("the connection closed without an answer; the request was not sent again"));
        return;
    }
    const bool endsInHead = !m_reader.isHeadWhole();
    if (result == CURLE_OK || (result == CURLE_PARTIAL_FILE && endsInHead)) {
        m_reader.finish();
    } else if (result == CURLE_OUT_OF_MEMORY && endsInHead) {
        // What libcurl says of a line that is longer than it takes.
        m_reader.note(AnswerReader::Defect::HeadTooLarge);
    }
    if (m_reader.defect() != AnswerReader::Defect::None) {
        m_reader.failForDefect();
    } else if (result != CURLE_OK) {
        fail(errorOfTransport(result),
             QString::fromUtf8(m_errorText[0] != '\0' ? m_errorText : curl_easy_strerror(result)));
    } else {
        m_reader.answer().isWhole = true;
    }
}

void HttpTransfer::fail(QNetworkReply::NetworkError error, const QString& text)
{
    m_reader.answer().fail(error, text);
}

void HttpTransfer::tellOwner()
{
    const std::function<void()> tell = std::move(m_whenFinished); // the transfer may go meanwhile
    tell();
}

} // namespace rk
