#include "CurlDriver.h"

#include "HttpTransfer.h"
#include "Sockets.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QThreadStorage>

#include <utility>

namespace rk {

CurlDriver* CurlDriver::ofThisThread()
{
    // Never freed: libcurl may be used until the last moment of the process.
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    static QThreadStorage<CurlDriver*> drivers; // deletes the main thread's with the QCoreApplication
    if (initialised != CURLE_OK || !QCoreApplication::instance()) {
        return nullptr;
    }
    if (!drivers.hasLocalData()) {
        const QEventLoop makesTheDispatcher;  // which notifiers need, and a thread begins without
        drivers.setLocalData(new CurlDriver); // NOLINT(cppcoreguidelines-owning-memory): the storage owns it
    }
    return drivers.localData();
}

CurlDriver::CurlDriver() : m_multi(curl_multi_init())
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { onTimerExpired(); });
    m_tellingTimer.setSingleShot(true);
    connect(&m_tellingTimer, &QTimer::timeout, this, [this] { tellOwners(); });
    const QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { ++m_turns; });
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] { ++m_turns; });
    curl_multi_setopt(m_multi.get(), CURLMOPT_SOCKETFUNCTION, &CurlDriver::onSocketWanted);
    curl_multi_setopt(m_multi.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi.get(), CURLMOPT_TIMERFUNCTION, &CurlDriver::onTimerWanted);
    curl_multi_setopt(m_multi.get(), CURLMOPT_TIMERDATA, this);
    // Nested waits use one connection each; more idle ones than this are closed.
    curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, 8L);
}

CurlDriver::~CurlDriver()
{
    for (HttpTransfer* transfer : qAsConst(m_running)) {
        curl_multi_remove_handle(m_multi.get(), transfer->handle());
    }
    // The notifiers go before the sockets that closing the connections closes.
    m_watches.clear();
    m_multi.reset();
}

CurlEasy CurlDriver::takeEasy()
{
    if (!m_spareEasy) {
        m_spareEasy.reset(curl_easy_init());
    }
    CURL* easy = m_spareEasy.get();
    if (easy) {
        curl_easy_reset(easy);
        curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, &CurlDriver::onSocketOpened);
        curl_easy_setopt(easy, CURLOPT_SOCKOPTDATA, this);
        curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &CurlDriver::onSocketClosing);
        curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
    }
    return std::move(m_spareEasy);
}

// Ends idle connections on which something has arrived: bytes that nobody asked for, which libcurl would take
// for the answer to the next request, or the peer's closing. libcurl drops an ended connection and opens
// another.
void CurlDriver::endStrayConnections()
{
    for (auto& [socket, watch] : m_watches) {
        if (watch.isConnection && !watch.isWanted && hasInput(socket)) {
            endConnection(socket);
            watch.isConnection = false; // libcurl may take a second to close it
        }
    }
}

void CurlDriver::start(HttpTransfer& transfer)
{
    endStrayConnections();
    if (!transfer.prepare(takeEasy()) ||
        curl_multi_add_handle(m_multi.get(), transfer.handle()) != CURLM_OK) {
        transfer.fail(QNetworkReply::UnknownNetworkError, QStringLiteral("the request cannot be prepared"));
        startFailed(transfer);
        return;
    }
    m_running.append(&transfer);
    // Sends at once what can be sent, instead of after another turn of the event loop.
    letLibcurlRun(CURL_SOCKET_TIMEOUT, 0);
    if (!m_finished.isEmpty()) {
        tellOwnersSoon();
    }
}

void CurlDriver::startFailed(HttpTransfer& transfer)
{
    m_finished.append(&transfer);
    tellOwnersSoon();
}

void CurlDriver::cancel(HttpTransfer& transfer)
{
    if (m_running.removeOne(&transfer)) {
        curl_multi_remove_handle(m_multi.get(), transfer.handle());
    }
    m_finished.removeOne(&transfer);
}

void CurlDriver::cancelAll()
{
    const QList<HttpTransfer*> running = std::exchange(m_running, {});
    for (HttpTransfer* transfer : running) {
        curl_multi_remove_handle(m_multi.get(), transfer->handle());
        transfer->fail(QNetworkReply::OperationCanceledError, QStringLiteral("the exchange was cancelled"));
        m_finished.append(transfer);
    }
    if (!m_finished.isEmpty()) {
        tellOwnersSoon();
    }
}

void CurlDriver::onSocketReady(curl_socket_t socket, int directions)
{
    Watch& watch = m_watches[socket];
    if (watch.isWanted) {
        letLibcurlRun(socket, directions);
        tellOwners();
    } else {
        watch.read->setEnabled(false); // an idle connection; endStrayConnections looks at it
    }
}

void CurlDriver::onTimerExpired()
{
    if (m_due.hasExpired()) {
        letLibcurlRun(CURL_SOCKET_TIMEOUT, 0);
        tellOwners();
    } else {
        armTimer();
    }
}

// libcurl moves its timer several times per request. A timer that is set already and goes off earlier is left
// alone: the event loop's timers cost more than going off in vain now and then.
void CurlDriver::armTimer()
{
    if (m_due.isForever() || (m_timer.isActive() && m_timer.remainingTime() <= m_due.remainingTime())) {
        return;
    }
    m_timer.start(static_cast<int>(m_due.remainingTime()));
}

void CurlDriver::letLibcurlRun(curl_socket_t socket, int directions)
{
    // libcurl's timer goes off once; when there is nothing more to wait for, libcurl does not say so.
    if (socket == CURL_SOCKET_TIMEOUT) {
        m_due = QDeadlineTimer(QDeadlineTimer::Forever);
    }
    int running = 0;
    curl_multi_socket_action(m_multi.get(), socket, directions, &running);
    collectFinished();
    armTimer();
}

void CurlDriver::collectFinished()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        const CURLcode result = message->data.result; // the message is gone once the handle is removed
        HttpTransfer& transfer = HttpTransfer::of(message->easy_handle);
        m_spareEasy = transfer.settle(result);
        curl_multi_remove_handle(m_multi.get(), m_spareEasy.get());
        m_running.removeOne(&transfer);
        m_finished.append(&transfer);
    }
}

void CurlDriver::tellOwners()
{
    const QPointer<CurlDriver> self(this);
    while (self && !m_finished.isEmpty()) {
        HttpTransfer* transfer = m_finished.takeFirst();
        // Its owner may wait for one of the others, which this loop cannot tell before the owner returns.
        if (!m_finished.isEmpty()) {
            tellOwnersSoon();
        }
        transfer->tellOwner();
    }
}

void CurlDriver::tellOwnersSoon()
{
    m_tellingTimer.start(0);
}

void CurlDriver::watch(curl_socket_t socket, int wanted)
{
    const bool reads = wanted == CURL_POLL_IN || wanted == CURL_POLL_INOUT;
    const bool writes = wanted == CURL_POLL_OUT || wanted == CURL_POLL_INOUT;
    Watch& watch = m_watches[socket];
    if (reads && !watch.read) {
        watch.read = notifier(socket, true);
    }
    if (writes && !watch.write) {
        watch.write = notifier(socket, false);
    }
    watch.isWanted = reads || writes;
    // Between two requests a connection stays watched: turning a notifier off and on again wakes the event
    // loop.
    if (watch.read && (reads || !watch.isConnection || watch.isWanted)) {
        watch.read->setEnabled(reads);
    }
    if (watch.write) {
        watch.write->setEnabled(writes);
    }
}

std::unique_ptr<QSocketNotifier> CurlDriver::notifier(curl_socket_t socket, bool forReading)
{
    auto notifier = std::make_unique<QSocketNotifier>(
        static_cast<qintptr>(socket), forReading ? QSocketNotifier::Read : QSocketNotifier::Write);
    const int direction = forReading ? CURL_CSELECT_IN : CURL_CSELECT_OUT;
    connect(notifier.get(), &QSocketNotifier::activated, this,
            [this, socket, direction] { onSocketReady(socket, direction); });
    return notifier;
}

int CurlDriver::onSocketWanted(CURL* /*easy*/, curl_socket_t socket, int wanted, void* driver,
                               void* /*unused*/)
{
    static_cast<CurlDriver*>(driver)->watch(socket, wanted);
    return 0;
}

int CurlDriver::onTimerWanted(CURLM* /*multi*/, long milliseconds, void* driver)
{
    static_cast<CurlDriver*>(driver)->m_due = milliseconds < 0
                                                  ? QDeadlineTimer(QDeadlineTimer::Forever)
                                                  : QDeadlineTimer(milliseconds, Qt::PreciseTimer);
    return 0;
}

int CurlDriver::onSocketOpened(void* driver, curl_socket_t socket, curlsocktype /*purpose*/)
{
    static_cast<CurlDriver*>(driver)->m_watches[socket].isConnection = true;
    return CURL_SOCKOPT_OK;
}

int CurlDriver::onSocketClosing(void* driver, curl_socket_t socket)
{
    auto& watches = static_cast<CurlDriver*>(driver)->m_watches;
    const auto found = watches.find(socket);
    if (found != watches.end()) {
        // Not deleted: this may be its own notification.
        Watch& watch = found->second;
        if (watch.read) {
            watch.read->setEnabled(false);
        }
        if (watch.write) {
            watch.write->setEnabled(false);
        }
        watch.isConnection = false;
        watch.isWanted = false;
    }
    return closeSocket(socket);
}

} // namespace rk
