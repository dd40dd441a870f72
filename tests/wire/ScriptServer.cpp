#include "ScriptServer.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QSslSocket>
#include <QTcpSocket>
#include <QTextCodec>
#include <QTimer>

#include <optional>

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

namespace {

const QByteArray headEnd = QByteArrayLiteral("\r\n\r\n");

// Takes one whole request off the front of `received`; nothing while it is incomplete.
std::optional<ScriptServer::Request> takeRequest(QByteArray& received)
{
    const int end = received.indexOf(headEnd);
    if (end < 0) {
        return std::nullopt;
    }

    ScriptServer::Request request;
    const QList<QByteArray> lines = received.left(end).split('\n');
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    request.method = words.value(0);
    request.target = words.value(1);
    for (int i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines.at(i).trimmed();
        const int colon = line.indexOf(':');
        request.headers.append({line.left(colon), line.mid(colon + 1).trimmed()});
    }

    const int length = request.header("Content-Length").toInt();
    const int whole = end + headEnd.size() + length;
    if (received.size() < whole) {
        return std::nullopt;
    }
    request.body = received.mid(end + headEnd.size(), length);
    received.remove(0, whole);
    return request;
}

// Makes the next close send a reset instead of a FIN (socket(7), SO_LINGER).
void closeByReset(QTcpSocket* socket)
{
    struct linger option = {};
    option.l_onoff = 1;
    option.l_linger = 0;
#ifdef Q_OS_WIN
    ::setsockopt(static_cast<SOCKET>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER,
                 reinterpret_cast<const char*>(&option), sizeof option);
#else
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &option, sizeof option);
#endif
    socket->abort();
}

constexpr int usualBacklog = 50;

// How many connections the system keeps that nobody has accepted yet, about (listen(2)).
void setBacklog(qintptr listener, int count)
{
#ifdef Q_OS_WIN
    ::listen(static_cast<SOCKET>(listener), count);
#else
    ::listen(static_cast<int>(listener), count);
#endif
}

// Percent-encoded UTF-8 as text. QString::fromUtf8 is no help: it stops at a NUL and drops a leading U+FEFF.
QString decoded(const QByteArray& text)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(text);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
}

} // namespace

QByteArray ScriptServer::Request::header(const QByteArray& name) const
{
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

ScriptServer::ScriptServer()
{
    connect(&m_listener, &QTcpServer::newConnection, this, [this] { accept(); });
    listen(0);
}

ScriptServer::~ScriptServer()
{
    const QList<QTcpSocket*> sockets = m_connections.keys();
    for (QTcpSocket* socket : sockets) {
        socket->disconnect(this);
    }
}

void ScriptServer::listen(quint16 port)
{
    // A port given up a moment ago may have been taken by somebody else.
    if (!m_listener.listen(QHostAddress::LocalHost, port) && !m_listener.listen(QHostAddress::LocalHost)) {
        qFatal("the script server cannot listen: %s", qPrintable(m_listener.errorString()));
    }
}

void ScriptServer::Listener::incomingConnection(qintptr descriptor)
{
    if (certificate.isNull()) {
        QTcpServer::incomingConnection(descriptor);
        return;
    }
    auto socket = std::make_unique<QSslSocket>();
    socket->setLocalCertificate(certificate);
    socket->setPrivateKey(key);
    if (!socket->setSocketDescriptor(descriptor)) {
        return;
    }
    socket->startServerEncryption();
    socket->setParent(this);
    addPendingConnection(socket.release());
}

void ScriptServer::useTls(const QSslCertificate& certificate, const QSslKey& key)
{
    m_listener.certificate = certificate;
    m_listener.key = key;
}

void ScriptServer::setArrival(Arrival arrival)
{
    if (m_arrival == Arrival::NotAccepted) {
        const size_t waiting = m_backlog.size();
        m_backlog.clear();
        setBacklog(m_listener.socketDescriptor(), usualBacklog);
        const int accepted = m_connectionsAccepted;
        m_listener.resumeAccepting();
        // Whoever connects while the queue is still full waits for a second.
        runEventsUntil([&] { return m_connectionsAccepted >= accepted + static_cast<int>(waiting) - 1; });
    }
    if (m_arrival == Arrival::Refused) {
        listen(m_portGivenUp);
    }
    m_arrival = arrival;
    if (arrival == Arrival::NotAccepted) {
        fillBacklog();
    }
    if (arrival == Arrival::Refused) {
        m_portGivenUp = port();
        m_listener.close();
    }
}

// Connects to itself without accepting until the system takes no more.
void ScriptServer::fillBacklog()
{
    constexpr int enough = 300; // where the system cannot be told to keep the queue short
    m_listener.pauseAccepting();
    setBacklog(m_listener.socketDescriptor(), 0);
    for (int i = 0; i < enough; ++i) {
        m_backlog.push_back(std::make_unique<QTcpSocket>());
        m_backlog.back()->connectToHost(QHostAddress(QHostAddress::LocalHost), port());
        if (!m_backlog.back()->waitForConnected(100)) {
            return;
        }
    }
}

void ScriptServer::hangUp()
{
    const QList<QTcpSocket*> sockets = m_connections.keys();
    for (QTcpSocket* socket : sockets) {
        socket->disconnectFromHost();
    }
}

QString ScriptServer::baseAddress() const
{
    const QString scheme = m_listener.certificate.isNull() ? QStringLiteral("http") : QStringLiteral("https");
    return QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(port());
}

quint16 ScriptServer::port() const
{
    return m_listener.serverPort();
}

void ScriptServer::answerJson(int status, const QByteArray& body)
{
    answerRaw({Step::bytes(httpAnswer(status, body))});
}

void ScriptServer::answerRaw(const QList<Step>& steps)
{
    QQueue<Step> answer;
    answer.append(steps);
    m_script.enqueue(answer);
}

void ScriptServer::neverAnswer()
{
    answerRaw({Step::never()});
}

QByteArray ScriptServer::httpAnswer(int status, const QByteArray& body, const QList<QByteArray>& headerLines)
{
    QByteArray answer = "HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\n";
    for (const QByteArray& line : headerLines) {
        answer += line + "\r\n";
    }
    // RFC 9110, 8.6: a 204 has no Content-Length.
    if (status != 204) {
        answer += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    }
    return answer + "\r\n" + body;
}

int ScriptServer::unansweredSteps() const
{
    int count = 0;
    for (const QList<Step>& answer : m_script) {
        count += answer.size();
    }
    for (const Connection& connection : m_connections) {
        count += connection.steps.size();
    }
    return count;
}

bool ScriptServer::runEventsUntil(const std::function<bool()>& done)
{
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(10000);
    while (!done() && limit.isActive()) {
        loop.processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return done();
}

QString ScriptServer::decodedPath(const QByteArray& target)
{
    const int question = target.indexOf('?');
    return decoded(question < 0 ? target : target.left(question));
}

QList<QPair<QString, QString>> ScriptServer::decodedQuery(const QByteArray& target)
{
    QList<QPair<QString, QString>> query;
    const int question = target.indexOf('?');
    if (question < 0) {
        return query;
    }
    const QList<QByteArray> parts = target.mid(question + 1).split('&');
    for (const QByteArray& part : parts) {
        const int equals = part.indexOf('=');
        const QByteArray name = equals < 0 ? part : part.left(equals);
        const QByteArray value = equals < 0 ? QByteArray() : part.mid(equals + 1);
        query.append({decoded(name), decoded(value)});
    }
    return query;
}

void ScriptServer::accept()
{
    while (QTcpSocket* socket = m_listener.nextPendingConnection()) {
        if (m_arrival == Arrival::Reset) {
            ++m_connectionsAccepted;
            closeByReset(socket);
            socket->deleteLater();
            continue;
        }
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the socket owns it
        auto* pause = new QTimer(socket);
        pause->setSingleShot(true);
        pause->setTimerType(Qt::PreciseTimer);
        connect(pause, &QTimer::timeout, this, [this, socket] {
            play(socket);
            read(socket);
        });
        m_connections[socket].number = ++m_connectionsAccepted;
        m_connections[socket].pause = pause;
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] { drop(socket); });
        read(socket);
    }
}

void ScriptServer::read(QTcpSocket* socket)
{
    if (!m_connections.contains(socket)) {
        return;
    }
    const QByteArray arrived = socket->readAll();
    m_bytesReceived += arrived.size();
    m_connections[socket].received += arrived;
    if (m_arrival == Arrival::ResetAtFirstByte && !arrived.isEmpty()) {
        closeByReset(socket);
        return;
    }
    // An answer is finished before the next request of the same connection is looked at.
    while (m_connections.contains(socket) && !m_connections[socket].answering) {
        std::optional<Request> request = takeRequest(m_connections[socket].received);
        if (!request) {
            return;
        }
        request->connection = m_connections[socket].number;
        m_requests.append(*request);
        m_connections[socket].answering = true;
        // Taken before onRequest runs: what is requested meanwhile gets the answers that follow.
        if (m_script.isEmpty()) {
            ++m_unscriptedRequests;
            answerJson(500, R"({"message":"no answer is scripted for this request"})");
        }
        m_connections[socket].steps.append(m_script.dequeue());
        if (const std::function<void()> call = onRequest) { // a copy: it may replace itself
            call();
        }
        play(socket);
    }
}

void ScriptServer::play(QTcpSocket* socket)
{
    while (m_connections.contains(socket) && !m_connections[socket].steps.isEmpty()) {
        const Step step = m_connections[socket].steps.dequeue();
        switch (step.kind) {
        case Step::Kind::Bytes:
            socket->write(step.data);
            socket->flush();
            break;
        case Step::Kind::Pause:
            m_connections[socket].pause->start(step.milliseconds);
            return;
        case Step::Kind::Fin:
            socket->disconnectFromHost();
            return;
        case Step::Kind::Reset:
            closeByReset(socket);
            return;
        case Step::Kind::Never:
            return;
        }
    }
    if (m_connections.contains(socket)) {
        m_connections[socket].answering = false;
    }
}

void ScriptServer::drop(QTcpSocket* socket)
{
    m_connections.remove(socket);
    socket->deleteLater();
}
