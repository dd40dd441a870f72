#pragma once

#include "AnswerReader.h"
#include "CurlHandles.h"
#include "HttpMessages.h"

#include <functional>

namespace rk {

/// One request and its answer as a libcurl easy handle, for a driver to run.
///
/// Sending at most once: libcurl by itself repeats a request on a kept connection that yields nothing,
/// whatever its method, and gives up after five. It asks before each sending (CURLOPT_PREREQFUNCTION), and is
/// refused there.
class HttpTransfer
{
public:
    /// `whenFinished` may delete the transfer.
    HttpTransfer(HttpRequest request, std::function<void()> whenFinished);
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    const HttpRequest& request() const { return m_request; }
    const HttpAnswer& answer() const { return m_reader.answer(); }

    /// Makes the handle ready to send the request, and keeps it. False without a handle or memory.
    bool prepare(CurlEasy handle);
    /// The handle that is kept; null before prepare() and after settle().
    CURL* handle() const { return m_easy.get(); }
    /// The transfer that a handle was made ready for.
    static HttpTransfer& of(CURL* handle);

    /// Judges the answer by libcurl's result, and gives the handle back.
    CurlEasy settle(CURLcode result);
    /// Has the answer fail, whatever has arrived.
    void fail(QNetworkReply::NetworkError error, const QString& text);
    /// Tells the owner that the answer is there or has failed; once, and never from inside libcurl.
    void tellOwner();

private:
    void prepareCallbacks();
    void prepareBody();
    void prepareBounds();
    bool prepareHeaders();
    bool addHeader(const char* line);
    void judge(CURLcode result);

    static int onSending(void* transfer, char* peer, char* self, int peerPort, int selfPort);

    HttpRequest m_request;
    std::function<void()> m_whenFinished;
    AnswerReader m_reader;
    CurlList m_headerList;
    char m_errorText[CURL_ERROR_SIZE] = {};
    CurlEasy m_easy; // freed before what it points to
    int m_timesSent = 0;
    bool m_isRepetitionRefused = false;
};

} // namespace rk
