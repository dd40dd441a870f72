#pragma once

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <curl/curl.h>

#include <memory>
#include <unordered_map>

class HttpTransfer;

/// Runs transfers on the event loop of its thread: libcurl's multi-socket interface (libcurl-multi(3)), a
/// QSocketNotifier per socket and direction, one timer.
///
/// Code of the application never runs from inside libcurl: transfers that are over are queued first, and
/// their owners told when libcurl has returned. So an owner may start, wait for and delete transfers as it
/// likes.
class CurlDriver : public QObject
{
public:
    struct FreeEasy
    {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };

    /// The calling thread's driver; null without a QCoreApplication. It goes with the thread, in the main
    /// thread with the QCoreApplication, and takes the connections with it.
    static CurlDriver* ofThisThread();

    ~CurlDriver() override;

    /// Sends a transfer's request. Its owner is told later that it is over, also when it cannot be sent.
    void start(HttpTransfer* transfer);
    /// Has a transfer fail later without sending anything; its answer holds the reason already.
    void startFailed(HttpTransfer* transfer);
    /// Drops a transfer; its owner is not told.
    void cancel(HttpTransfer* transfer);
    /// Has every transfer under way fail as cancelled; their owners are told later.
    void abortAll();

    /// Rises whenever the thread's event dispatcher runs.
    quint64 turns() const { return m_turns; }

private:
    struct FreeMulti
    {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    /// Kept when libcurl is done with a socket, for the next request on the connection or the next socket of
    /// that number.
    struct Watch
    {
        std::unique_ptr<QSocketNotifier> read;
        std::unique_ptr<QSocketNotifier> write;
        bool isConnection = false; ///< opened for a connection, and neither ended nor closed yet
        bool isWanted = false;     ///< libcurl asks for something
    };

    CurlDriver();

    std::unique_ptr<CURL, FreeEasy> takeEasy();
    void actOnSocket(curl_socket_t socket, int what);
    void actOnTime();
    void act(curl_socket_t socket, int what);
    void perform(curl_socket_t socket, int what);
    void armTimer();
    void endStrayConnections();
    void collectFinished();
    void deliver();
    void deliverSoon();
    void watch(curl_socket_t socket, int what);
    std::unique_ptr<QSocketNotifier> notifier(curl_socket_t socket, bool forReading);

    static int onSocket(CURL* easy, curl_socket_t socket, int what, void* driver, void* unused);
    static int onTimer(CURLM* multi, long milliseconds, void* driver);
    static int onSocketOpened(void* driver, curl_socket_t socket, curlsocktype purpose);
    static int onSocketClosing(void* driver, curl_socket_t socket);

    std::unique_ptr<CURLM, FreeMulti> m_multi;
    std::unique_ptr<CURL, FreeEasy> m_spareEasy;                    ///< of the last transfer, for the next
    QDeadlineTimer m_due = QDeadlineTimer(QDeadlineTimer::Forever); ///< when libcurl wants to be called
    QTimer m_timer;                                                 ///< goes off at m_due or earlier
    quint64 m_turns = 0;
    QTimer m_delivery; ///< runs deliver() in the next turn of the event loop
    std::unordered_map<curl_socket_t, Watch> m_watches;
    QList<HttpTransfer*> m_running;
    QList<HttpTransfer*> m_finished; ///< over, their owners not told yet
};
