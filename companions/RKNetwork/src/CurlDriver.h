#pragma once

#include "CurlHandles.h"

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <unordered_map>

namespace rk {

class HttpTransfer;

/// Runs transfers on the event loop of its thread: libcurl's multi-socket interface (libcurl-multi(3)), a
/// QSocketNotifier per socket and direction, one timer.
///
/// Code of the application never runs from inside libcurl: transfers that are over are queued first, and
/// their owners told when libcurl has returned. So an owner may start, wait for and delete transfers as it
/// likes. An owner that goes before it was told cancels its transfer first.
class CurlDriver : public QObject
{
public:
    /// The calling thread's driver; null without a QCoreApplication. It goes with the thread, in the main
    /// thread with the QCoreApplication, and takes the connections with it.
    static CurlDriver* ofThisThread();

    ~CurlDriver() override;

    /// Sends a transfer's request. Its owner is told later that it is over, also when it cannot be sent.
    void start(HttpTransfer& transfer);
    /// Tells the owner of a transfer that has failed already, later and without sending anything.
    void startFailed(HttpTransfer& transfer);
    /// Drops a transfer that is not over; its owner is not told.
    void cancel(HttpTransfer& transfer);
    /// Has every transfer under way fail as cancelled; their owners are told later.
    void cancelAll();

    /// Counts up whenever the thread's event dispatcher runs.
    quint64 turns() const { return m_turns; }

private:
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

    CurlEasy takeEasy();
    void onSocketReady(curl_socket_t socket, int directions);
    void onTimerExpired();
    void letLibcurlRun(curl_socket_t socket, int directions);
    void armTimer();
    void endStrayConnections();
    void collectFinished();
    void tellOwners();
    void tellOwnersSoon();
    void watch(curl_socket_t socket, int wanted);
    std::unique_ptr<QSocketNotifier> notifier(curl_socket_t socket, bool forReading);

    // What libcurl calls; see CURLMOPT_SOCKETFUNCTION(3) and so on.
    static int onSocketWanted(CURL* easy, curl_socket_t socket, int wanted, void* driver, void* unused);
    static int onTimerWanted(CURLM* multi, long milliseconds, void* driver);
    static int onSocketOpened(void* driver, curl_socket_t socket, curlsocktype purpose);
    static int onSocketClosing(void* driver, curl_socket_t socket);

    CurlMulti m_multi;
    CurlEasy m_spareEasy;                                           ///< of the last transfer, for the next
    QDeadlineTimer m_due = QDeadlineTimer(QDeadlineTimer::Forever); ///< when libcurl wants to be called
    QTimer m_timer;                                                 ///< goes off at m_due or earlier
    quint64 m_turns = 0;
    QTimer m_tellingTimer; ///< runs tellOwners() in the next turn of the event loop
    std::unordered_map<curl_socket_t, Watch> m_watches;
    QList<HttpTransfer*> m_running;
    QList<HttpTransfer*> m_finished; ///< over, their owners not told yet
};

} // namespace rk
