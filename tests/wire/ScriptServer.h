#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QQueue>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <QTcpServer>

#include <functional>
#include <memory>
#include <vector>

class QTcpSocket;
class QTimer;

/// An HTTP/1.1 server on the loopback that answers from a script: the first request gets the first queued
/// answer, and so on, whatever its connection. It lives in the test's own thread and is driven by Qt's
/// events, so it answers while the code under test waits in an event loop.
///
/// Every test ends with `EXPECT_TRUE(server.isUsedUp())`.
class ScriptServer : public QObject
{
public:
    /// One thing done on the connection of a request.
    struct Step
    {
        enum class Kind
        {
            Bytes, ///< write `data` as it stands
            Pause, ///< wait `milliseconds` before the next step
            Fin,   ///< close the connection after what was written
            Reset, ///< close it with a TCP reset, dropping what was not yet sent
            Never, ///< leave the connection open and silent for good
        };
        Kind kind = Kind::Bytes;
        QByteArray data;
        int milliseconds = 0;

        static Step bytes(const QByteArray& data) { return {Kind::Bytes, data, 0}; }
        static Step pause(int milliseconds) { return {Kind::Pause, {}, milliseconds}; }
        static Step fin() { return {Kind::Fin, {}, 0}; }
        static Step reset() { return {Kind::Reset, {}, 0}; }
        static Step never() { return {Kind::Never, {}, 0}; }
    };

    struct Request
    {
        QByteArray method;
        QByteArray target;                            ///< as on the wire
        QList<QPair<QByteArray, QByteArray>> headers; ///< in wire order, names as sent
        QByteArray body;
        int connection = 0; ///< 1 for the first connection accepted, 2 for the second, ...

        /// The first header of that name in any case; null when there is none.
        QByteArray header(const QByteArray& name) const;
    };

    /// Listens on a free port of 127.0.0.1.
    ScriptServer();
    ~ScriptServer() override;

    /// Speaks TLS on the connections accepted from now on, with this certificate.
    void useTls(const QSslCertificate& certificate, const QSslKey& key);

    /// "http://127.0.0.1:PORT/", or "https:" once it speaks TLS.
    QString baseAddress() const;
    quint16 port() const;

    /// Queues one complete answer that leaves the connection open.
    void answerJson(int status, const QByteArray& body);
    /// Queues one answer given as bytes, pauses and ways to close. Steps that remain when the client hangs up
    /// are dropped and count as done.
    void answerRaw(const QList<Step>& steps);
    /// Queues an answer that never comes: the request is read and the connection stays open.
    void neverAnswer();

    /// A whole answer with Content-Length, to be used as it is or cut to pieces for answerRaw.
    static QByteArray httpAnswer(int status, const QByteArray& body,
                                 const QList<QByteArray>& headerLines = {"Content-Type: application/json"});

    /// What becomes of a connection.
    enum class Arrival
    {
        Served,
        Reset,            ///< reset as soon as it is accepted
        ResetAtFirstByte, ///< reset when the first byte of a request arrives on it
        NotAccepted,      ///< left in the system's queue, which is full
        Refused,          ///< nobody listens on the port
    };
    /// Holds for the connections and the bytes that arrive from now on. Serving again after Refused may be on
    /// another port.
    void setArrival(Arrival arrival);
    /// Closes every open connection.
    void hangUp();

    /// Every whole request so far, in order of arrival.
    QList<Request> requests() const { return m_requests; }
    int requestCount() const { return m_requests.size(); }
    /// How many connections were accepted so far.
    int connectionCount() const { return m_connectionsAccepted; }
    /// How many bytes of requests arrived so far, those of incomplete ones included.
    qint64 bytesReceived() const { return m_bytesReceived; }

    /// True when every queued answer was asked for and given, and no request came that had none.
    bool isUsedUp() const { return unansweredSteps() == 0 && m_unscriptedRequests == 0; }
    /// How many queued steps have not been done, those of answers nobody asked for included.
    int unansweredSteps() const;

    /// Called when a whole request has arrived, before its answer is sent. It may run events of its own.
    std::function<void()> onRequest;

    /// Runs the thread's events until `done` holds; false when it does not within ten seconds.
    static bool runEventsUntil(const std::function<bool()>& done);

    /// The path of a request target, split off at the first "?" and percent-decoded (RFC 3986, 2.1 and 3.3).
    static QString decodedPath(const QByteArray& target);
    /// The query of a target: split at "&", each part at its first "=", then percent-decoded (RFC 3986, 3.4).
    static QList<QPair<QString, QString>> decodedQuery(const QByteArray& target);

private:
    struct Connection
    {
        int number = 0;
        QByteArray received;
        QQueue<Step> steps;
        QTimer* pause = nullptr; ///< the socket's
        bool answering = false;
    };

    /// Hands out QSslSockets once there is a certificate.
    class Listener : public QTcpServer
    {
    public:
        QSslCertificate certificate;
        QSslKey key;

    protected:
        void incomingConnection(qintptr descriptor) override;
    };

    void listen(quint16 port);
    void fillBacklog();
    void accept();
    void read(QTcpSocket* socket);
    void play(QTcpSocket* socket);
    void drop(QTcpSocket* socket);

    Listener m_listener;
    Arrival m_arrival = Arrival::Served;
    std::vector<std::unique_ptr<QTcpSocket>> m_backlog; ///< connections of its own that keep others out
    quint16 m_portGivenUp = 0;
    qint64 m_bytesReceived = 0;
    QQueue<QList<Step>> m_script;
    QList<Request> m_requests;
    QHash<QTcpSocket*, Connection> m_connections;
    int m_connectionsAccepted = 0;
    int m_unscriptedRequests = 0;
};
