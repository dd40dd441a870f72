#pragma once

#include "ContentDecoder.h"
#include "CurlDriver.h"

#include <QByteArray>
#include <QList>
#include <QNetworkReply>
#include <QPointer>
#include <QString>

#include <curl/curl.h>

#include <chrono>
#include <functional>
#include <memory>

/// One request as it goes on the wire, and the bounds of its exchange.
struct HttpRequest
{
    QByteArray method;
    QByteArray url; ///< encoded
    QByteArray body;
    QList<QByteArray> headerLines;
    std::chrono::milliseconds deadline{0};
    std::chrono::milliseconds connectTimeout{0};
    qint64 maximumReplySize = 0;
    QByteArray caFile;
    QByteArray proxy;
};

/// What came back. A body is there only when the whole answer arrived undamaged.
struct HttpAnswer
{
    bool isWhole = false;
    int status = 0; ///< 0 when no status line arrived
    QByteArray reason;
    QList<QNetworkReply::RawHeaderPair> headers;
    QByteArray body;
    qint64 bytesReceived = 0;
    /// Why the answer is not whole; NoError when it is, whatever its status.
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorText;

    QByteArray header(const char* name) const;
};

/// One request and its answer as a libcurl easy handle. CurlDriver runs it.
///
/// Sending at most once: libcurl by itself repeats a request on a kept connection that yields nothing,
/// whatever its method, and gives up after five. It asks before each sending (CURLOPT_PREREQFUNCTION), and is
/// refused there.
class HttpTransfer
{
public:
    /// `whenFinished` is called by the driver, never from inside libcurl; it may delete the transfer.
    HttpTransfer(HttpRequest request, std::function<void()> whenFinished);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    const HttpRequest& request() const { return m_request; }
    HttpAnswer& answer() { return m_answer; }
    /// Stops it; whenFinished is not called any more.
    void cancel();

private:
    friend class CurlDriver;

    enum class Stop
    {
        None,
        Repeated,
        TooLarge,
        Damaged,
        UnknownEncoding,
        BadLength,
        ContradictoryLength,
        HeadTooLarge,
        OutOfMemory,
    };

    struct FreeList
    {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    bool prepare(std::unique_ptr<CURL, CurlDriver::FreeEasy> handle);
    void prepareBody();
    void prepareBounds();
    bool prepareHeaders();
    bool addHeader(const char* line);
    void settle(CURLcode code);
    void failWith(QNetworkReply::NetworkError error, const QString& text);
    CURLcode lastCheck(CURLcode code);
    bool endsWithItsConnection() const;
    QString describe(CURLcode code) const;

    void takeStatusLine(const QByteArray& line);
    bool takeHeader(const QByteArray& line);
    bool takeLength(const QByteArray& value, const QByteArray& earlier);
    bool takeHeadLine(const char* data, qint64 size);
    bool takeBody(const char* data, qint64 size);
    bool stopUnlessGood(ContentDecoder::Result result);

    static int onSending(void* transfer, char*, char*, int, int);
    static size_t onHeadLine(char* data, size_t size, size_t count, void* transfer);
    static size_t onBody(char* data, size_t size, size_t count, void* transfer);

    HttpRequest m_request;
    std::function<void()> m_whenFinished;
    HttpAnswer m_answer;
    std::unique_ptr<curl_slist, FreeList> m_headerList;
    std::unique_ptr<CURL, CurlDriver::FreeEasy> m_easy; // freed before what it points to
    QPointer<CurlDriver> m_driver;

    ContentDecoder m_decoder;
    qint64 m_headSize = 0;
    int m_timesSent = 0;
    bool m_headIsWhole = false;
    Stop m_stop = Stop::None;
    char m_errorText[CURL_ERROR_SIZE] = {};
};
