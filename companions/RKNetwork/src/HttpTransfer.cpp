#include "HttpTransfer.h"

#include "ErrorTable.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr qint64 maximumHeadSize = 256 * 1024;

QString megabytes(qint64 bytes)
{
    return bytes < 1024 * 1024 ? QStringLiteral("%1 bytes").arg(bytes)
                               : QStringLiteral("%1 MiB").arg(bytes / (1024 * 1024));
}

} // namespace

QByteArray HttpAnswer::header(const char* name) const
{
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

HttpTransfer::HttpTransfer(HttpRequest request, std::function<void()> whenFinished)
    : m_request(std::move(request)), m_whenFinished(std::move(whenFinished)),
      m_decoder(QByteArray(), m_request.maximumReplySize)
{
}

HttpTransfer::~HttpTransfer()
{
    cancel();
}

void HttpTransfer::cancel()
{
    if (m_driver) {
        m_driver->cancel(this);
    }
}

bool HttpTransfer::prepare(std::unique_ptr<CURL, CurlDriver::FreeEasy> handle)
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

    curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, &HttpTransfer::onSending);
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &HttpTransfer::onHeadLine);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    prepareBody();
    prepareBounds();
    return curl_easy_setopt(easy, CURLOPT_URL, m_request.url.constData()) == CURLE_OK;
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

void HttpTransfer::settle(CURLcode code)
{
    curl_off_t received = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
    m_answer.bytesReceived = received;

    const CURLcode last = lastCheck(code);
    m_answer.isWhole = last == CURLE_OK;
    if (!m_answer.isWhole) {
        const auto error = m_stop == Stop::Repeated      ? QNetworkReply::RemoteHostClosedError
                           : m_stop == Stop::OutOfMemory ? QNetworkReply::UnknownNetworkError
                           : m_stop != Stop::None        ? QNetworkReply::ProtocolFailure
                                                         : errorOfTransport(last);
        failWith(error, describe(last));
    }
}

void HttpTransfer::failWith(QNetworkReply::NetworkError error, const QString& text)
{
    m_answer.isWhole = false;
    m_answer.body.clear();
    m_answer.error = error;
    m_answer.errorText = text;
}

// The checks that libcurl leaves out: a head cut between two lines, compressed data that end too early, and a
// connection that ends where a body of unstated length should begin pass there as whole.
CURLcode HttpTransfer::lastCheck(CURLcode code)
{
    // libcurl says so of a line that is longer than it takes, too.
    if (code == CURLE_OUT_OF_MEMORY && !m_headIsWhole && m_stop == Stop::None) {
        m_stop = Stop::HeadTooLarge;
    }
    if (code != CURLE_OK) {
        return code;
    }
    if (!m_headIsWhole) {
        return CURLE_PARTIAL_FILE;
    }
    const bool hasContent = m_answer.status != 204 && m_answer.status != 304;
    if (hasContent && !stopUnlessGood(m_decoder.finish())) {
        return CURLE_BAD_CONTENT_ENCODING;
    }
    if (hasContent && endsWithItsConnection() && m_answer.body.isEmpty()) {
        return CURLE_PARTIAL_FILE;
    }
    return CURLE_OK;
}

// Nothing but the end of the connection says where the body ends (RFC 9112, 6.3).
bool HttpTransfer::endsWithItsConnection() const
{
    return m_answer.header("Content-Length").isNull() && m_answer.header("Transfer-Encoding").isNull();
}

QString HttpTransfer::describe(CURLcode code) const
{
    switch (m_stop) {
    case Stop::None:
        break;
    case Stop::Repeated:
        return QStringLiteral("the connection closed without an answer; the request was not sent again");
    case Stop::TooLarge:
        return QStringLiteral("the reply is larger than the limit of %1")
            .arg(megabytes(m_request.maximumReplySize));
    case Stop::Damaged:
        return QStringLiteral("the compressed reply is damaged or incomplete");
    case Stop::UnknownEncoding:
        return QStringLiteral("the reply has an unknown Content-Encoding \"%1\"")
            .arg(QString::fromLatin1(m_answer.header("Content-Encoding")));
    case Stop::ContradictoryLength:
        return QStringLiteral("the reply states two different lengths");
    case Stop::BadLength:
        return QStringLiteral("the reply states a length that is none: \"%1\"")
            .arg(QString::fromLatin1(m_answer.header("Content-Length")));
    case Stop::HeadTooLarge:
        return QStringLiteral("the reply's header is too large");
    case Stop::OutOfMemory:
        return QStringLiteral("not enough memory for the reply");
    }
    if (code == CURLE_PARTIAL_FILE && !m_headIsWhole) {
        return QStringLiteral("the connection closed within the reply's header");
    }
    if (code == CURLE_PARTIAL_FILE && m_errorText[0] == '\0') {
        return QStringLiteral("the connection closed where the reply's body should begin");
    }
    return QString::fromUtf8(m_errorText[0] != '\0' ? m_errorText : curl_easy_strerror(code));
}

int HttpTransfer::onSending(void* transfer, char* /*peer*/, char* /*self*/, int /*peerPort*/,
                            int /*selfPort*/)
{
    auto* self = static_cast<HttpTransfer*>(transfer);
    const int most = self->m_request.method == "GET" ? 2 : 1;
    if (++self->m_timesSent <= most) {
        return CURL_PREREQFUNC_OK;
    }
    self->m_stop = Stop::Repeated;
    return CURL_PREREQFUNC_ABORT;
}

size_t HttpTransfer::onHeadLine(char* data, size_t size, size_t count, void* transfer)
{
    const size_t bytes = size * count;
    auto* self = static_cast<HttpTransfer*>(transfer);
    try {
        return self->takeHeadLine(data, static_cast<qint64>(bytes)) ? bytes : 0;
    } catch (const std::bad_alloc&) { // must not pass through libcurl
        self->m_stop = Stop::OutOfMemory;
        return 0;
    }
}

size_t HttpTransfer::onBody(char* data, size_t size, size_t count, void* transfer)
{
    const size_t bytes = size * count;
    auto* self = static_cast<HttpTransfer*>(transfer);
    try {
        return self->takeBody(data, static_cast<qint64>(bytes)) ? bytes : 0;
    } catch (const std::bad_alloc&) { // must not pass through libcurl
        self->m_stop = Stop::OutOfMemory;
        return 0;
    }
}

bool HttpTransfer::takeHeadLine(const char* data, qint64 size)
{
    m_headSize += size;
    if (m_headSize > maximumHeadSize) {
        m_stop = Stop::HeadTooLarge;
        return false;
    }
    const QByteArray line = QByteArray(data, static_cast<int>(size)).trimmed();
    if (line.startsWith("HTTP/")) {
        takeStatusLine(line);
        return true;
    }
    if (m_headIsWhole) { // a trailer of a chunked body
        return true;
    }
    if (!line.isEmpty()) {
        return takeHeader(line);
    }
    // An interim answer (RFC 9110, 15.2) is followed by another head.
    m_headIsWhole = m_answer.status >= 200;
    if (m_headIsWhole) {
        m_decoder = ContentDecoder(m_answer.header("Content-Encoding"), m_request.maximumReplySize);
    }
    return true;
}

void HttpTransfer::takeStatusLine(const QByteArray& line)
{
    const int first = line.indexOf(' ');
    const int second = line.indexOf(' ', first + 1);
    m_answer.status = line.mid(first + 1, second < 0 ? -1 : second - first - 1).toInt();
    m_answer.reason = second < 0 ? QByteArray() : line.mid(second + 1).trimmed();
    m_answer.headers.clear();
    m_headIsWhole = false;
}

bool HttpTransfer::takeHeader(const QByteArray& line)
{
    const int colon = line.indexOf(':');
    if (colon < 0) {
        return true;
    }
    const QByteArray name = line.left(colon).trimmed();
    const QByteArray value = line.mid(colon + 1).trimmed();
    const QByteArray earlier = m_answer.header(name.constData());
    m_answer.headers.append({name, value});
    return name.compare("Content-Length", Qt::CaseInsensitive) != 0 || takeLength(value, earlier);
}

// RFC 9112, 6.3: a length that is no number, or that is stated twice and differently, cannot be trusted.
// libcurl takes what digits it finds, and reads to the end of the connection when they are too many.
bool HttpTransfer::takeLength(const QByteArray& value, const QByteArray& earlier)
{
    bool isNumber = false;
    value.toLongLong(&isNumber);
    const bool hasDigitsOnly =
        std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber || !hasDigitsOnly) {
        m_stop = Stop::BadLength;
    } else if (!earlier.isNull() && earlier != value) {
        m_stop = Stop::ContradictoryLength;
    }
    return m_stop == Stop::None;
}

bool HttpTransfer::takeBody(const char* data, qint64 size)
{
    return stopUnlessGood(m_decoder.write(data, size, m_answer.body));
}

bool HttpTransfer::stopUnlessGood(ContentDecoder::Result result)
{
    switch (result) {
    case ContentDecoder::Result::Good:
        return true;
    case ContentDecoder::Result::UnknownEncoding:
        m_stop = Stop::UnknownEncoding;
        return false;
    case ContentDecoder::Result::Damaged:
        m_stop = Stop::Damaged;
        return false;
    case ContentDecoder::Result::TooLarge:
        m_stop = Stop::TooLarge;
        return false;
    }
    return false;
}
